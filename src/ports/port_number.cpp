#include "ports/port_number.h"

namespace tidelink {
namespace {

constexpr std::uint32_t registry_string = 1;
constexpr std::uint32_t registry_expandable_string = 2;
constexpr std::size_t prefix_length = 3;
constexpr std::size_t bytes_per_character = 2;

unsigned character_at(std::span<const std::byte> text, std::size_t index) noexcept
{
    const std::size_t offset = index * bytes_per_character;
    return std::to_integer<unsigned>(text[offset]) | std::to_integer<unsigned>(text[offset + 1]) << 8U;
}

} // namespace

std::uint32_t port_number(std::uint32_t type, std::span<const std::byte> data) noexcept
{
    if (type != registry_string && type != registry_expandable_string)
        return 0;
    const std::size_t length = data.size() / bytes_per_character;
    if (length <= prefix_length || data.size() % bytes_per_character != 0 || character_at(data, length - 1) != 0)
        return 0;

    std::uint32_t number = 0;
    for (std::size_t i = prefix_length; i < length; ++i) {
        const unsigned digit = character_at(data, i) - u'0';
        if (digit > 9)
            break;
        number = number * 10 + digit;
    }
    return number;
}

} // namespace tidelink
