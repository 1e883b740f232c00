#pragma once

#include <cstdint>
#include <optional>

namespace girder {

/// The number that a hexadecimal digit of either case stands for; nothing for any other unit.
std::optional<std::uint8_t> hexadecimal_digit(char16_t unit) noexcept;

} // namespace girder
