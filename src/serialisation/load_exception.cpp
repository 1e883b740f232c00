#include "serialisation/load_exception.h"

#include "base/utf.h"
#include "format/format.h"
#include "format/literals.h"

namespace girder::nsm::details {
namespace {

using namespace fmtkit::literals;

std::string text_with_position(const char* text, const text_position& where, std::string_view detail)
{
    std::string whole = text;
    fmtkit::append(whole, " ({0},{1})"_fmt, where.line, where.column);
    if (!detail.empty())
        whole.append(": ").append(detail);
    return whole;
}

} // namespace

load_exception::load_exception(const char* text, text_position where, std::string_view detail)
    : std::runtime_error(text_with_position(text, where, detail)), position_(where)
{}

std::u16string load_exception::message() const
{
    return to_utf16(what());
}

} // namespace girder::nsm::details
