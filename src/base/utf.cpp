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

void append_utf16(std::u16string& out, char32_t value)
{
    if (value < 0x10000) {
        out.push_back(static_cast<char16_t>(value));
        return;
    }
    value -= 0x10000;
    out.push_back(static_cast<char16_t>(0xD800 + (value >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + (value & 0x3FF)));
}

void append_utf8(std::string& out, char32_t value)
{
    const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
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
}

constexpr bool is_high_surrogate(char16_t unit)
{
    return (unit & 0xFC00) == 0xD800;
}
constexpr bool is_low_surrogate(char16_t unit)
{
    return (unit & 0xFC00) == 0xDC00;
}

} // namespace

std::u16string to_utf16(std::string_view utf8)
{
    std::u16string out;
    out.reserve(utf8.size());
    for (std::size_t position = 0; position < utf8.size();) {
        const auto lead = static_cast<unsigned char>(utf8[position]);
        if (lead < 0x80) {
            out.push_back(lead);
            ++position;
        } else {
            append_utf16(out, decode_sequence(utf8, position));
        }
    }
    return out;
}

std::string to_utf8(std::u16string_view utf16)
{
    std::string out;
    out.reserve(utf16.size());
    for (std::size_t i = 0; i < utf16.size(); ++i) {
        const char16_t unit = utf16[i];
        if (is_high_surrogate(unit) && i + 1 < utf16.size() && is_low_surrogate(utf16[i + 1])) {
            const char16_t low = utf16[++i];
            append_utf8(out, 0x10000 + ((char32_t{unit} - 0xD800) << 10) + (char32_t{low} - 0xDC00));
        } else {
            append_utf8(out, is_high_surrogate(unit) || is_low_surrogate(unit) ? replacement : char32_t{unit});
        }
    }
    return out;
}

} // namespace girder
