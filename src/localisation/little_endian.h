#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tidelink {

static_assert(std::endian::native == std::endian::little, "numbers and texts of packs are used as they are stored");

/// A number of a pack; packs are not padded, so it may stand at any address. All its bytes must be readable.
template <typename Number>
Number load_number(const std::byte* stored) noexcept
{
    Number value = 0;
    std::memcpy(&value, stored, sizeof value);
    return value;
}

} // namespace tidelink
