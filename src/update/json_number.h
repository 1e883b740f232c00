#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// The numbers of a JSON text, read by the parsers of Boost.Spirit X3 as far as those are exact.

namespace girder::json {

/// \return behind the number that begins there, nullptr when there is none: decimal digits with an optional fraction,
///         exponent and minus sign, or nan, inf or infinity in any case. At least one digit stands before or after the
///         point.
const char* after_number(const char* at, const char* end) noexcept;

// Empty when the whole text is not such a number, or out of range.

template <typename Integer>
std::optional<Integer> parse_integer(std::string_view text);
std::optional<std::uint64_t> parse_hexadecimal(std::string_view digits);
/// Takes the decimal digits at the front; empty, with `at` where it was, when there is none or the number is out of
/// range.
std::optional<std::uint64_t> take_integer(const char*& at, const char* end);
/// The nearest value.
template <typename Real>
std::optional<Real> parse_real(std::string_view text);

} // namespace girder::json
