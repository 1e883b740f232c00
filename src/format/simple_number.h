#pragma once

#include "format/argument.h"
#include "format/compiled_format.h"
#include "format/number_text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

// The two kinds of numbers that nearly all formats write, without the steps that only others need.

namespace fmtkit::details {

/// What is enough for a simple number or code. A number is written as eight units, whatever its length.
inline constexpr std::size_t simple_number_room = 10;

/// The digits of a number below 100'000'000, leading zeros among them, the first in the lowest byte: numbers of four,
/// two and one digits are taken out of each other side by side.
constexpr std::uint64_t eight_decimal_digits(std::uint32_t value) noexcept
{
    std::uint64_t digits = value / 10'000 | std::uint64_t{value % 10'000} << 32;
    const std::uint64_t hundreds = (digits * 10'486 >> 20) & 0x0000'007F'0000'007F;
    digits = hundreds | (digits - 100 * hundreds) << 16;
    const std::uint64_t tens = (digits * 103 >> 10) & 0x000F'000F'000F'000F;
    digits = tens | (digits - 10 * tens) << 8;
    return digits + 0x3030'3030'3030'3030;
}

/// Decimal, of at most eight digits, at most filled with zeros: the rest of the rules does not come in.
inline bool is_simple_number(const FormatItem& item, const argument& value) noexcept
{
    return item.base == 10 && (item.flags & (flag_character | flag_grouped | flag_plus)) == 0 && item.maxWidth == 0 &&
           item.minWidth <= 8 && (item.minWidth == 0 || (item.fill == u'0' && item.align == align_right)) &&
           value.is_number() && value.bits() < 100'000'000;
}

/// \param out  simple_number_room units
/// \return the end of the number
template <typename Char>
Char* write_simple_number(Char* out, const FormatItem& item, std::uint32_t value) noexcept
{
    const std::size_t size = std::max<std::size_t>(decimal_size(value), item.minWidth);
    widen_eight(out, eight_decimal_digits(value) >> (64 - 8 * size));
    return out + size;
}

/// Hexadecimal in eight digits, as the codes of errors are written.
inline bool is_simple_code(const FormatItem& item, const argument& value) noexcept
{
    return item.base == 16 && (item.flags & (flag_character | flag_hex_padded)) == flag_hex_padded &&
           is_without_width(item) && value.is_number() && is_unsigned(item, value) && value.as_unsigned() >> 32 == 0;
}

/// \param out  simple_number_room units
/// \return the end of the code
template <typename Char>
Char* write_simple_code(Char* out, const FormatItem& item, std::uint32_t value) noexcept
{
    if ((item.flags & flag_hex_prefix) != 0)
        out = write_hexadecimal_prefix(out);
    write_eight_digits(out, value, item.flags);
    return out + 8;
}

} // namespace fmtkit::details
