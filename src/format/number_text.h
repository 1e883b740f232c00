#pragma once

#include "format/argument.h"
#include "format/compiled_format.h"

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

// Numbers as digits, written straight to where they belong: their length is found first.

namespace fmtkit::details {

/// The digits of 0 to 99, two for each.
template <typename Char>
inline constexpr auto decimal_pairs = [] {
    std::array<Char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<Char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<Char>('0' + i % 10);
    }
    return pairs;
}();

/// Those that the type can hold, from the power of 0.
template <std::unsigned_integral Number>
inline constexpr auto powers_of_ten = [] {
    std::array<Number, sizeof(Number) == 4 ? 10 : 20> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i)
        powers[i] = static_cast<Number>(powers[i - 1] * 10);
    return powers;
}();

/// How many decimal digits a number has; one for 0.
template <std::unsigned_integral Number>
constexpr std::size_t decimal_size(Number value) noexcept
{
    // 1233 / 4096 is the logarithm of 2 to the base 10; setting the lowest bit gives 0 its digit.
    value |= 1;
    const auto least = static_cast<std::size_t>(std::bit_width(value) * 1233) >> 12;
    return least + (value >= powers_of_ten<Number>[least] ? 1 : 0);
}

/// Writes the digits in front of `end`, as many as decimal_size says.
template <typename Char, std::unsigned_integral Number>
void write_decimal_before(Char* end, Number value) noexcept
{
    while (value >= 100) {
        end -= 2;
        std::memcpy(end, &decimal_pairs<Char>[2 * static_cast<std::size_t>(value % 100)], 2 * sizeof(Char));
        value /= 100;
    }
    if (value >= 10)
        std::memcpy(end - 2, &decimal_pairs<Char>[2 * static_cast<std::size_t>(value)], 2 * sizeof(Char));
    else
        end[-1] = static_cast<Char>('0' + static_cast<char>(value));
}

/// How many digits of so many bits a number has; one for 0.
constexpr std::size_t digits_of_bits(std::uint64_t value, unsigned bits_of_digit) noexcept
{
    return (static_cast<std::size_t>(std::bit_width(value | 1)) + bits_of_digit - 1) / bits_of_digit;
}

/// The length that `p` asks for: leading zeros to 8 or 16.
template <std::unsigned_integral Number>
constexpr std::size_t padded_hexadecimal_size(std::size_t digits) noexcept
{
    return sizeof(Number) == 4 || digits <= 8 ? 8 : 16;
}

/// Writes the lowest `size` digits.
template <typename Char>
void write_digits(Char* out, std::size_t size, std::uint64_t value, unsigned bits_of_digit,
                  const char* alphabet) noexcept
{
    const std::uint64_t mask = (1U << bits_of_digit) - 1;
    for (Char* at = out + size; at != out; value >>= bits_of_digit)
        *--at = static_cast<Char>(alphabet[value & mask]);
}

constexpr const char* hexadecimal_alphabet(std::uint32_t flags) noexcept
{
    return (flags & flag_lower_hex) != 0 ? "0123456789abcdef" : "0123456789ABCDEF";
}

/// Writes the bytes of a word, the lowest first, as eight units.
template <typename Char>
void widen_eight(Char* out, std::uint64_t bytes) noexcept
{
    using eight_bytes [[gnu::vector_size(8)]] = unsigned char;
    using eight_units [[gnu::vector_size(8 * sizeof(Char))]] = std::make_unsigned_t<Char>;
    const auto units = __builtin_convertvector(std::bit_cast<eight_bytes>(bytes), eight_units);
    std::memcpy(out, &units, sizeof units);
}

/// Writes eight hexadecimal digits, leading zeros among them, at once: a digit in each byte of a word.
template <typename Char>
void write_eight_digits(Char* out, std::uint32_t value, std::uint32_t flags) noexcept
{
    std::uint64_t digits = value;
    digits = (digits | digits << 16) & 0x0000'FFFF'0000'FFFF;
    digits = (digits | digits << 8) & 0x00FF'00FF'00FF'00FF;
    digits = (digits | digits << 4) & 0x0F0F'0F0F'0F0F'0F0F;
    // Adding 6 carries into the next half byte from ten on.
    const std::uint64_t letters = ((digits + 0x0606'0606'0606'0606) >> 4) & 0x0101'0101'0101'0101;
    digits += 0x3030'3030'3030'3030 + letters * ((flags & flag_lower_hex) != 0 ? 'a' - '0' - 10 : 'A' - '0' - 10);
    widen_eight(out, __builtin_bswap64(digits));
}

template <typename Char>
Char* write_hexadecimal_prefix(Char* out) noexcept
{
    *out++ = Char('0');
    *out++ = Char('x');
    return out;
}

/// Writes the lowest `size` digits in the case that the flags ask for.
template <typename Char, std::unsigned_integral Number>
void write_hexadecimal(Char* out, std::size_t size, Number value, std::uint32_t flags) noexcept
{
    if (size == 8)
        write_eight_digits(out, static_cast<std::uint32_t>(value), flags);
    else
        write_digits(out, size, value, 4, hexadecimal_alphabet(flags));
}

/// The value of a number and its sign, by the rules of an item.
template <std::unsigned_integral Number>
struct signed_magnitude {
    Number magnitude;
    char sign; ///< 0 for none
};

/// \param is_unsigned  of the argument or by the item
template <std::unsigned_integral Number>
constexpr signed_magnitude<Number> split_sign(Number bits, bool is_unsigned, std::uint32_t flags) noexcept
{
    const bool is_negative = !is_unsigned && bits >> (sizeof(Number) * 8 - 1) != 0;
    if (is_negative)
        return {static_cast<Number>(0 - bits), '-'};
    return {bits, !is_unsigned && (flags & flag_plus) != 0 ? '+' : '\0'};
}

/// Whether the argument is or the item makes it unsigned.
inline bool is_unsigned(const FormatItem& item, const argument& value) noexcept
{
    return (item.flags & flag_unsigned) != 0 || value.type() == argument::kind::unsigned_number;
}

/// The argument's bits as the item reads them.
inline signed_magnitude<std::uint64_t> magnitude_of(const FormatItem& item, const argument& value) noexcept
{
    const bool unsigned_bits = is_unsigned(item, value);
    return split_sign(unsigned_bits ? value.as_unsigned() : value.bits(), unsigned_bits, item.flags);
}

constexpr bool is_without_width(const FormatItem& item) noexcept
{
    return item.minWidth == 0 && item.maxWidth == 0;
}

/// The numbers of almost all formats: decimal without groups or hexadecimal, never cut.
constexpr bool is_plain_number(const FormatItem& item) noexcept
{
    return (item.flags & (flag_character | flag_grouped)) == 0 && item.base != 2 && item.base != 8 &&
           item.maxWidth == 0;
}

/// Units that are enough for a plain number: 20 digits behind a sign, or 16 behind a sign and a prefix.
constexpr std::size_t plain_number_room(const FormatItem& item) noexcept
{
    return std::max<std::size_t>(item.minWidth, 21);
}

/// Padding is a few units: code for many would be in the way.
template <typename Char>
Char* write_padding(Char* out, std::uint16_t fill, std::size_t count) noexcept
{
#pragma clang loop vectorize(disable) unroll(disable)
    for (; count > 0; --count)
        *out++ = static_cast<Char>(fill);
    return out;
}

/// Writes a number, decimal without groups or hexadecimal, with its padding. Meant to be folded where the item is a
/// constant.
/// \return the end of what was written
template <typename Char, std::unsigned_integral Number>
[[gnu::always_inline]] inline Char* write_plain_number(Char* out, const FormatItem& item, std::size_t minimum,
                                                       signed_magnitude<Number> number) noexcept
{
    const auto [magnitude, sign] = number;
    const bool is_decimal = item.base == 10;
    const std::size_t prefix = !is_decimal && (item.flags & flag_hex_prefix) != 0 ? 2 : 0;
    const std::size_t natural_digits = is_decimal ? decimal_size(magnitude) : digits_of_bits(magnitude, 4);
    const std::size_t digits = !is_decimal && (item.flags & flag_hex_padded) != 0
                                   ? padded_hexadecimal_size<Number>(natural_digits)
                                   : natural_digits;
    const std::size_t size = (sign != 0 ? 1 : 0) + prefix + digits;
    const std::size_t padding = minimum > size ? minimum - size : 0;
    const std::size_t before = item.align == align_right ? padding : item.align == align_centre ? padding / 2 : 0;
    out = write_padding(out, item.fill, before);
    if (sign != 0)
        *out++ = static_cast<Char>(sign);
    if (prefix != 0)
        out = write_hexadecimal_prefix(out);
    if (is_decimal)
        write_decimal_before(out + digits, magnitude);
    else
        write_hexadecimal(out, digits, magnitude, item.flags);
    return write_padding(out + digits, item.fill, padding - before);
}

} // namespace fmtkit::details
