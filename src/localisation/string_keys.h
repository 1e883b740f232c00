#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tidelink {

/// The key of a constant of string_id in the English source; empty for any other number.
std::u16string_view key_of(std::uint32_t id) noexcept;

} // namespace tidelink
