#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

// Real numbers as decimals and back, exactly. The standard library's std::to_chars and std::from_chars do the same with
// 200 KiB of tables and code, which this program does not have room for.

namespace girder::nsm {

/// digits[0].digits[1]digits[2]... times 10 to the power of the exponent.
struct decimal_number {
    std::string digits;
    int exponent = 0;
};

/// A binary format of real numbers: an integer of `mantissa_bits` times a power of two that is not below
/// 2^lowest_exponent.
struct real_format {
    int mantissa_bits;
    int lowest_exponent;
    int highest_exponent; ///< of 2, of the largest number's highest bit
};

template <typename Real>
inline constexpr real_format format_of{.mantissa_bits = std::numeric_limits<Real>::digits,
                                       .lowest_exponent =
                                           std::numeric_limits<Real>::min_exponent - std::numeric_limits<Real>::digits,
                                       .highest_exponent = std::numeric_limits<Real>::max_exponent - 1};

/// The shortest decimal that is nearer to `value` than to its neighbours in the format; of several the nearest.
/// Burger and Dybvig, Printing Floating-Point Numbers Quickly and Accurately, 1996.
/// \param value  above 0, finite, in the format
decimal_number shortest_decimal(double value, const real_format& format);

/// The number of the format that is nearest to a decimal, ties to even.
/// \param digits    decimal digits, as an integer
/// \param exponent  of 10, by which that integer is multiplied
/// \return empty when it is beyond the format's range, or nearer to 0 than to its smallest number without being 0
std::optional<double> nearest_real(std::string_view digits, long long exponent, const real_format& format);

} // namespace girder::nsm
