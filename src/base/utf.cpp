#include "base/utf.h"

#include <cstdint>

namespace girder {
namespace {

constexpr char32_t replacement = 0xFFFD;

struct sequence_rule {
    unsigned char first, last; // range of the lead byte
    unsigned char second_first, second_last;
    int continuation_bytes;
    unsigned char lead_bits;
};

// Well-formed sequences, Unicode 15, table 3-7. The range of the second byte rules out over-long forms, surrogates and
// values above U+10FFFF.
constexpr sequence_rule rules[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 1, 0x1F}, {0xE0, 0xE0, 0xA0, 0xBF, 2, 0x0F}, {0xE1, 0xEC, 0x80, 0xBF, 2, 0x0F},
    {0xED, 0xED, 0x80, 0x9F, 2, 0x0F}, {0xEE, 0xEF, 0x80, 0xBF, 2, 0x0F}, {0xF0, 0xF0, 0x90, 0xBF, 3, 0x07},
    {0xF1, 0xF3, 0x80, 0xBF, 3, 0x07}, {0xF4, 0xF4, 0x80, 0x8F, 3, 0x07},
};

const sequence_rule* rule_of(unsigned char lead)
{
    for (const sequence_rule& rule : rules)
        if (lead >= rule.first && lead <= rule.last)
            return &rule;
    return nullptr;
}

/// Decodes one multi-byte sequence and moves `position` behind it, or behind its ill-formed part.
char32_t decode_sequence(std::string_view text, std::size_t& position)
{
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const sequence_rule* rule = rule_of(byte(position));
    if (!rule) {
        ++position;
        return replacement;
    }
    char32_t value = byte(position++) & rule->lead_bits;
    unsigned char low = rule->second_first;
    unsigned char high = rule->second_last;
    for (int i = 0; i < rule->continuation_bytes; ++i) {
        if (position == text.size() || byte(position) < low || byte(position) > high)
            return replacement;
        value = (value << 6) | (byte(position++) & 0x3F);
        low = 0x80;
        high = 0xBF;
    }
    return value;
}

char16_t* put_utf16(char16_t* out, char32_t value)
{
    if (value < 0x10000) {
        *out++ = static_cast<char16_t>(value);
        return out;
    }
    value -= 0x10000;
    *out++ = static_cast<char16_t>(0xD800 + (value >> 10));
    *out++ = static_cast<char16_t>(0xDC00 + (value & 0x3FF));
    return out;
}

char* put_utf8(char* out, char32_t value)
{
    const auto put = [&out](char32_t byte) { *out++ = static_cast<char>(static_cast<unsigned char>(byte)); };
    if (value < 0x80) {
        put(value);
    } else if (value < 0x800) {
        put(0xC0 | (value >> 6));
        put(0x80 | (value & 0x3F));
    } else if (value < 0x10000) {
        put(0xE0 | (value >> 12));
        put(0x80 | ((value >> 6) & 0x3F));
        put(0x80 | (value & 0x3F));
    } else {
        put(0xF0 | (value >> 18));
        put(0x80 | ((value >> 12) & 0x3F));
        put(0x80 | ((value >> 6) & 0x3F));
        put(0x80 | (value & 0x3F));
    }
    return out;
}

/// Decodes the character at `position` and moves it behind.
char32_t take_character(std::string_view utf8, std::size_t& position)
{
    const auto lead = static_cast<unsigned char>(utf8[position]);
    if (lead >= 0x80)
        return decode_sequence(utf8, position);
    ++position;
    return lead;
}

char32_t take_character(std::u16string_view utf16, std::size_t& position)
{
    const char16_t unit = utf16[position++];
    if (is_high_surrogate(unit) && position < utf16.size() && is_low_surrogate(utf16[position])) {
        const char16_t low = utf16[position++];
        return 0x10000 + ((char32_t{unit} - 0xD800) << 10) + (char32_t{low} - 0xDC00);
    }
    return is_high_surrogate(unit) || is_low_surrogate(unit) ? replacement : char32_t{unit};
}

} // namespace

char16_t* write_utf16(char16_t* out, std::string_view utf8) noexcept
{
    for (std::size_t position = 0; position < utf8.size();)
        out = put_utf16(out, take_character(utf8, position));
    return out;
}

char* write_utf8(char* out, std::u16string_view utf16) noexcept
{
    for (std::size_t position = 0; position < utf16.size();)
        out = put_utf8(out, take_character(utf16, position));
    return out;
}

std::size_t utf16_size(std::string_view utf8) noexcept
{
    char16_t units[2];
    std::size_t size = 0;
    for (std::size_t position = 0; position < utf8.size();)
        size += static_cast<std::size_t>(put_utf16(units, take_character(utf8, position)) - units);
    return size;
}

std::size_t utf8_size(std::u16string_view utf16) noexcept
{
    char bytes[4];
    std::size_t size = 0;
    for (std::size_t position = 0; position < utf16.size();)
        size += static_cast<std::size_t>(put_utf8(bytes, take_character(utf16, position)) - bytes);
    return size;
}

std::u16string to_utf16(std::string_view utf8)
{
    std::u16string out(utf16_size(utf8), u'\0');
    write_utf16(out.data(), utf8);
    return out;
}

std::string to_utf8(std::u16string_view utf16)
{
    std::string out(utf8_size(utf16), '\0');
    write_utf8(out.data(), utf16);
    return out;
}

} // namespace girder
