#include "base/hexadecimal.h"

namespace girder {

std::optional<std::uint8_t> hexadecimal_digit(char16_t unit) noexcept
{
    if (unit >= u'0' && unit <= u'9')
        return static_cast<std::uint8_t>(unit - u'0');
    const auto lower = static_cast<char16_t>(unit | 0x20);
    if (lower >= u'a' && lower <= u'f')
        return static_cast<std::uint8_t>(lower - u'a' + 10);
    return std::nullopt;
}

} // namespace girder
