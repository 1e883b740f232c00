#pragma once

#include <string>
#include <string_view>

namespace girder {

/// UTF-8 to UTF-16. Every ill-formed sequence becomes one U+FFFD for each of its maximal subparts (Unicode 15, table
/// 3-8), as the system's own conversion from code page 65001 does; the result is always well formed.
std::u16string to_utf16(std::string_view utf8);

/// UTF-16 to UTF-8. A surrogate without its partner becomes U+FFFD.
std::string to_utf8(std::u16string_view utf16);

} // namespace girder
