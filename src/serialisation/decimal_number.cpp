#include "serialisation/decimal_number.h"

#include "serialisation/big_number.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace girder::nsm {
namespace {

/// Generates the digits of a number: a fraction, and how far its neighbours' borders are away, over the same divisor.
struct digit_source {
    big_number rest;
    big_number above;
    big_number below;
    big_number divisor;
    bool borders_belong; ///< a number on the border reads back as this one

    bool beyond_upper_border() const
    {
        big_number upper = rest;
        upper += above;
        return borders_belong ? upper >= divisor : upper > divisor;
    }

    bool within_lower_border() const { return borders_belong ? rest <= below : rest < below; }

    /// Whether the rest is nearer to the next digit.
    bool rounds_up() const
    {
        big_number twice = rest;
        twice *= 2;
        return twice >= divisor;
    }

    void shift_digit()
    {
        rest *= 10;
        above *= 10;
        below *= 10;
    }

    char take_digit()
    {
        char digit = '0';
        for (; rest >= divisor; ++digit)
            rest -= divisor;
        return digit;
    }
};

digit_source source_of(std::uint64_t mantissa, int exponent, const real_format& format)
{
    // Below a power of two the numbers are twice as dense.
    const bool uneven = mantissa == std::uint64_t{1} << (format.mantissa_bits - 1) && exponent > format.lowest_exponent;
    digit_source source{.rest = big_number(mantissa),
                        .above = big_number(uneven ? 2 : 1),
                        .below = big_number(1),
                        .divisor = big_number(uneven ? 4 : 2),
                        .borders_belong = mantissa % 2 == 0};
    source.rest *= uneven ? 4 : 2;
    if (exponent >= 0) {
        const auto bits = static_cast<std::size_t>(exponent);
        source.rest <<= bits;
        source.above <<= bits;
        source.below <<= bits;
    } else {
        source.divisor <<= static_cast<std::size_t>(-exponent);
    }
    return source;
}

/// Makes the first digit the next to come. \return its decimal exponent
int scale(digit_source& source, double value)
{
    // May be one too low, never too high.
    const int exponent = static_cast<int>(std::ceil(std::log10(value) - 1e-10));
    if (exponent >= 0) {
        source.divisor.scale_by_ten(static_cast<std::size_t>(exponent));
    } else {
        const auto scaled = static_cast<std::size_t>(-exponent);
        source.rest.scale_by_ten(scaled);
        source.above.scale_by_ten(scaled);
        source.below.scale_by_ten(scaled);
    }
    if (source.beyond_upper_border())
        return exponent;
    source.shift_digit();
    return exponent - 1;
}

/// An integer and the number of bits by which it is shifted left from the number that it stands for. What lies below
/// the integer is told by its lowest bit.
struct shifted_integer {
    std::uint64_t integer;
    int shift;
};

shifted_integer quotient(big_number dividend, big_number divisor)
{
    constexpr int quotient_bits = 60;
    const int shift = quotient_bits - static_cast<int>(dividend.bit_width()) + static_cast<int>(divisor.bit_width());
    (shift >= 0 ? dividend : divisor) <<= static_cast<std::size_t>(std::abs(shift));
    divisor <<= quotient_bits;
    std::uint64_t result = 0;
    for (int bit = 0; bit <= quotient_bits; ++bit) {
        result *= 2;
        if (dividend >= divisor) {
            dividend -= divisor;
            ++result;
        }
        dividend *= 2;
    }
    return {.integer = result * 2 + (dividend.bit_width() > 0 ? 1 : 0), .shift = shift + 1};
}

/// The nearest number of the format, without its upper limit.
double rounded(const shifted_integer& number, const real_format& format)
{
    const int dropped = std::max(static_cast<int>(std::bit_width(number.integer)) - format.mantissa_bits,
                                 format.lowest_exponent + number.shift);
    if (dropped > static_cast<int>(std::bit_width(number.integer)))
        return 0;
    std::uint64_t kept = number.integer >> dropped;
    // A quotient has 61 bits and more, so that some are dropped. NOLINTNEXTLINE(clang-analyzer-core.BitwiseShift)
    const std::uint64_t half = std::uint64_t{1} << (dropped - 1);
    const std::uint64_t rest = number.integer & (2 * half - 1);
    if (rest > half || (rest == half && kept % 2 == 1))
        ++kept;
    return std::ldexp(static_cast<double>(kept), dropped - number.shift);
}

} // namespace

decimal_number shortest_decimal(double value, const real_format& format)
{
    int exponent = 0;
    const double fraction = std::frexp(value, &exponent);
    // Of the smallest numbers the mantissa has fewer bits.
    const int bits = std::min(format.mantissa_bits, exponent - format.lowest_exponent);
    digit_source source = source_of(static_cast<std::uint64_t>(std::ldexp(fraction, bits)), exponent - bits, format);
    decimal_number result{.digits = {}, .exponent = scale(source, value)};
    for (;; source.shift_digit()) {
        const char digit = source.take_digit();
        const bool low = source.within_lower_border();
        const bool high = source.beyond_upper_border();
        if (low || high) {
            const bool up = high && (!low || source.rounds_up());
            result.digits += static_cast<char>(digit + (up ? 1 : 0));
            return result;
        }
        result.digits += digit;
    }
}

std::optional<double> nearest_real(std::string_view digits, long long exponent, const real_format& format)
{
    // No number half-way between two neighbours has as many digits: from there on it only counts whether one is not 0.
    constexpr std::size_t most_digits = 800;
    constexpr long long far_beyond = 400;
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    if (digits.empty())
        return 0.0;
    const long long first_digit = exponent + static_cast<long long>(digits.size());
    if (first_digit > far_beyond || first_digit < -far_beyond)
        return std::nullopt;

    big_number dividend(0);
    for (const char digit : digits.substr(0, most_digits)) {
        dividend *= 10;
        dividend += big_number(static_cast<std::uint64_t>(digit - '0'));
    }
    if (digits.size() > most_digits) {
        const bool more = digits.substr(most_digits).find_first_not_of('0') != std::string_view::npos;
        dividend *= 10;
        dividend += big_number(more ? 1 : 0);
        exponent += static_cast<long long>(digits.size() - most_digits) - 1;
    }
    big_number divisor(1);
    (exponent >= 0 ? dividend : divisor).scale_by_ten(static_cast<std::size_t>(std::abs(exponent)));
    const double value = rounded(quotient(std::move(dividend), std::move(divisor)), format);
    if (value == 0 || value >= std::ldexp(1.0, format.highest_exponent) * 2)
        return std::nullopt;
    return value;
}

} // namespace girder::nsm
