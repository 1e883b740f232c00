#include "ports/port_number.h"

namespace tidelink {
namespace {

constexpr std::uint32_t registry_string = 1;
constexpr std::uint32_t registry_expand_string = 2;
constexpr std::size_t skipped_characters = 3;

char16_t character(std::span<const std::byte> data, std::size_t index) noexcept
{
    const auto low = std::to_integer<unsigned>(data[2 * index]);
    const auto high = std::to_integer<unsigned>(data[2 * index + 1]);
    return static_cast<char16_t>(low | (high << 8));
}

} // namespace

std::uint32_t port_number(std::uint32_t type, std::span<const std::byte> data) noexcept
{
    const bool is_text = type == registry_string || type == registry_expand_string;
    const std::size_t count = data.size() / 2;
    if (!is_text || data.size() % 2 != 0 || count <= skipped_characters || character(data, count - 1) != u'\0')
        return 0;
    std::uint32_t number = 0;
    for (std::size_t i = skipped_characters; i < count; ++i) {
        const char16_t digit = character(data, i);
        if (digit < u'0' || digit > u'9')
            break;
        number = number * 10 + (digit - u'0');
    }
    return number;
}

} // namespace tidelink
