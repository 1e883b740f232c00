#include "serialisation/guid_text.h"

#include "base/hexadecimal.h"
#include "format/format.h"
#include "format/literals.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace girder::nsm {
namespace {

using namespace fmtkit::literals;

constexpr std::u16string_view pattern = u"{hhhhhhhh-hhhh-hhhh-hhhh-hhhhhhhhhhhh}";

} // namespace

std::u16string to_text(const guid& value)
{
    std::u16string text =
        fmtkit::format(u"{{{0b16w8arf0}-{1b16w4arf0}-{2b16w4arf0}-"_fmt, value.data1, value.data2, value.data3);
    for (std::size_t i = 0; i < value.data4.size(); ++i) {
        if (i == 2)
            text += u'-';
        fmtkit::append(text, u"{0b16w2arf0}"_fmt, value.data4[i]);
    }
    text += u'}';
    return text;
}

std::optional<guid> parse_guid(std::u16string_view text)
{
    if (text.size() != pattern.size())
        return std::nullopt;
    std::array<std::uint8_t, 16> bytes{};
    std::size_t digits = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (pattern[i] != u'h') {
            if (text[i] != pattern[i])
                return std::nullopt;
            continue;
        }
        const std::optional<std::uint8_t> digit = hexadecimal_digit(text[i]);
        if (!digit)
            return std::nullopt;
        bytes[digits / 2] = static_cast<std::uint8_t>(bytes[digits / 2] * 16U + *digit);
        ++digits;
    }
    guid value;
    for (std::size_t i = 0; i < 4; ++i)
        value.data1 = (value.data1 << 8) | bytes[i];
    value.data2 = static_cast<std::uint16_t>((bytes[4] << 8) | bytes[5]);
    value.data3 = static_cast<std::uint16_t>((bytes[6] << 8) | bytes[7]);
    std::copy_n(bytes.begin() + 8, 8, value.data4.begin());
    return value;
}

} // namespace girder::nsm
