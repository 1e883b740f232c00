#pragma once

#include "localisation/little_endian.h"
#include "require.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <span>
#include <string_view>

namespace fuzz {

using bytes = std::span<const std::byte>;

/// A text that is served and not empty lies in one of the packs with a null behind it. It may lie at an odd address.
inline void require_served_from(std::u16string_view text, std::initializer_list<bytes> packs)
{
    if (text.empty())
        return;
    const auto* const first = reinterpret_cast<const std::byte*>(text.data());
    const std::byte* const null = first + text.size() * sizeof(char16_t);
    require(std::ranges::any_of(packs, [&](bytes pack) {
        return std::greater_equal<>()(first, pack.data()) && null + sizeof(char16_t) <= pack.data() + pack.size();
    }));
    require(tidelink::load_number<char16_t>(null) == 0);
}

} // namespace fuzz
