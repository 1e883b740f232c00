#include "base/debug_log.h"

#include "base/utf.h"

#include <charconv>

namespace girder {
namespace {

std::string digits(std::uint32_t value, int base)
{
    char buffer[16];
    const auto [end, error] = std::to_chars(std::begin(buffer), std::end(buffer), value, base);
    return {buffer, end};
}

/// Eight hexadecimal digits in upper case, as error codes are written.
std::string code_digits(std::uint32_t code)
{
    std::string text = digits(code, 16);
    for (char& digit : text)
        if (digit >= 'a')
            digit = static_cast<char>(digit - 'a' + 'A');
    return std::string(8 - text.size(), '0') + text;
}

std::string_view file_name(std::string_view path)
{
    return path.substr(path.find_last_of("/\\") + 1);
}

} // namespace

std::u16string failure_line(const failure& what, std::uint32_t thread, const std::source_location& where)
{
    std::u16string line = to_utf16(file_name(where.file_name()));
    line += u'(' + to_utf16(digits(where.line(), 10)) + u") tid(" + to_utf16(digits(thread, 16)) + u") ";
    line += to_utf16(code_digits(what.code)) + u' ';
    line += what.text;
    if (!what.message.empty())
        line.append(u" Msg:[").append(what.message).append(u"]");
    if (!what.context.empty())
        line.append(u" CallContext:[").append(to_utf16(what.context)).append(u"]");
    line += u'\n';
    return line;
}

} // namespace girder
