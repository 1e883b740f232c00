#include "update/base64.h"

#include <algorithm>
#include <cstdint>

namespace girder {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::optional<std::uint32_t> digit_value(char16_t unit)
{
    const std::size_t index = unit < 0x80 ? alphabet.find(static_cast<char>(unit)) : std::string_view::npos;
    if (index == std::string_view::npos)
        return std::nullopt;
    return static_cast<std::uint32_t>(index);
}

} // namespace

std::string to_base64(std::span<const std::byte> bytes)
{
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const auto group = bytes.subspan(i, std::min<std::size_t>(3, bytes.size() - i));
        std::uint32_t bits = 0;
        for (std::size_t k = 0; k < 3; ++k)
            bits = bits << 8 | (k < group.size() ? std::to_integer<std::uint32_t>(group[k]) : 0);
        for (std::size_t k = 0; k < 4; ++k)
            text += k <= group.size() ? alphabet[bits >> (18 - 6 * k) & 0x3F] : '=';
    }
    return text;
}

std::optional<std::vector<std::byte>> from_base64(std::u16string_view text)
{
    if (text.ends_with(u'=')) {
        if (text.size() % 4 != 0)
            return std::nullopt;
        text.remove_suffix(text.ends_with(u"==") ? 2 : 1);
    }
    if (text.size() % 4 == 1)
        return std::nullopt;
    std::vector<std::byte> bytes;
    bytes.reserve(text.size() * 3 / 4);
    std::uint32_t bits = 0;
    unsigned count = 0;
    for (const char16_t unit : text) {
        const std::optional<std::uint32_t> value = digit_value(unit);
        if (!value)
            return std::nullopt;
        bits = bits << 6 | *value;
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes.push_back(static_cast<std::byte>(bits >> count));
        }
    }
    return bytes;
}

} // namespace girder
