#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// RFC 4648, section 4: the standard alphabet, padded with "=".

namespace girder {

std::string to_base64(std::span<const std::byte> bytes);

/// Padding may be missing. Empty when the text is not base64.
std::optional<std::vector<std::byte>> from_base64(std::u16string_view text);

} // namespace girder
