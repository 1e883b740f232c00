#include "localisation/corrections.h"

#include "base/utf.h"
#include "format/format.h"
#include "format/literals.h"
#include "localisation/pack_name_hash.h"

namespace tidelink {

namespace {

using namespace fmtkit::literals;

/// What one character becomes after all the replacements, in their order.
std::u16string_view escape_of(char16_t unit) noexcept
{
    switch (unit) {
    case u'"':
        return u"&amp;quot;";
    case u'\r':
        return u"\\r";
    case u'\n':
        return u"\\n";
    case u'\t':
        return u"\\t";
    case u'&':
        return u"&amp;";
    default:
        return {};
    }
}

void append_escaped(std::u16string& out, std::u16string_view text)
{
    for (const char16_t unit : text) {
        const std::u16string_view escape = escape_of(unit);
        if (escape.empty())
            out += unit;
        else
            out += escape;
    }
}

} // namespace

std::string corrections_module(std::u16string_view module, const Corrections& corrections)
{
    std::u16string lines = u"  <Module name=\"";
    lines.append(module_without_folder(module)).append(u"\">\r\n");
    for (const auto& [key, text] : corrections) {
        lines += u"    <String id=\"";
        append_escaped(lines, key);
        lines += u"\" value=\"";
        append_escaped(lines, text);
        lines += u"\"/>\r\n";
    }
    lines += u"  </Module>\r\n";
    return girder::to_utf8(lines);
}

std::u16string corrections_file_name(std::u16string_view module, girder::file_time now)
{
    return fmtkit::format(u"{0}.{1t(%Y%m%d-%H%M%S)}.xml"_fmt, module_without_folder(module), now);
}

} // namespace tidelink
