#pragma once

#include <algorithm>
#include <string_view>

namespace girder::http {

/// Whether an address begins with "https://", in any case.
constexpr bool is_https(std::u16string_view url) noexcept
{
    constexpr std::u16string_view scheme = u"https://";
    return std::ranges::equal(url.substr(0, scheme.size()), scheme, {}, [](char16_t unit) {
        return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit | 0x20) : unit;
    });
}

} // namespace girder::http
