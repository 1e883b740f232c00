#include "localisation/string_entry.h"

namespace tidelink {

namespace {

// An item of a list: its index, then the length of its text and the units.
constexpr std::size_t item_length_at = 4;
constexpr std::size_t item_text_at = 6;
constexpr std::size_t min_item_size = 8;

} // namespace

std::u16string_view StringEntry::item(std::uint32_t index) const noexcept
{
    auto found = std::u16string_view(u"");
    if (!is_list(stored_))
        return found;
    const std::byte* item = stored_ + items_at;
    for (auto left = load_number<std::uint32_t>(stored_ + item_count_at); left > 0; --left) {
        const std::size_t length = load_number<std::uint16_t>(item + item_length_at);
        if (load_number<std::uint32_t>(item) == index)
            found = view(item + item_text_at, length);
        item += item_text_at + (length + 1) * sizeof(char16_t);
    }
    return found;
}

std::size_t StringEntry::list_size(const std::byte* stored, std::size_t available) noexcept
{
    std::size_t size = items_at;
    for (auto left = load_number<std::uint32_t>(stored + item_count_at); left > 0; --left) {
        if (available - size < min_item_size)
            return 0;
        const std::size_t item = size_with_text(stored + size, available - size, item_text_at);
        if (item == 0)
            return 0;
        size += item;
    }
    return size;
}

} // namespace tidelink
