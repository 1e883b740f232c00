#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace girder {

/// UTF-8 to UTF-16. Every ill-formed sequence becomes one U+FFFD for each of its maximal subparts (Unicode 15, table
/// 3-8), as the system's own conversion from code page 65001 does; the result is always well formed.
std::u16string to_utf16(std::string_view utf8);

/// UTF-16 to UTF-8. A surrogate without its partner becomes U+FFFD.
std::string to_utf8(std::u16string_view utf16);

/// The first and the second half of a pair of UTF-16 units.
constexpr bool is_high_surrogate(char16_t unit) noexcept
{
    return (unit & 0xFC00) == 0xD800;
}
constexpr bool is_low_surrogate(char16_t unit) noexcept
{
    return (unit & 0xFC00) == 0xDC00;
}

/// The sizes of those results.
std::size_t utf16_size(std::string_view utf8) noexcept;
std::size_t utf8_size(std::u16string_view utf16) noexcept;

/// The same conversions into memory of the caller, which has room for the result: at most one unit for each byte, at
/// most three bytes for each unit.
/// \return the end of what was written
char16_t* write_utf16(char16_t* out, std::string_view utf8) noexcept;
char* write_utf8(char* out, std::u16string_view utf16) noexcept;

} // namespace girder
