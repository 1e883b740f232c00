#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// The numbers of a JSON text, read by the parsers of Boost.Spirit X3 as far as those are exact.

namespace girder::json {

/// Whether the whole text is a number: decimal digits with an optional fraction, exponent and minus sign, or nan, inf
/// or infinity in any case. At least one digit stands before or after the point.
bool is_number(std::string_view text) noexcept;

// Empty when the whole text is not such a number, or out of range.

template <typename Integer>
std::optional<Integer> parse_integer(std::string_view text);
std::optional<std::uint64_t> parse_hexadecimal(std::string_view digits);
/// The nearest value.
template <typename Real>
std::optional<Real> parse_real(std::string_view text);

} // namespace girder::json
