#include "localisation/string_entry.h"

namespace tidelink {

namespace {

constexpr std::size_t min_item_size = 8;

// What programs keep by index would grow beyond all proportion to the pack with indices near 2^32.
constexpr std::uint32_t index_limit = 65'536;

// Items are looked for one after the other, and for each item of a translation.
constexpr std::uint32_t most_items = 1'024;

} // namespace

std::u16string_view StringEntry::item(std::uint32_t index) const noexcept
{
    auto found = std::u16string_view(u"");
    for_each_item([&](std::uint32_t stored_index, std::u16string_view text) {
        if (stored_index == index)
            found = text;
    });
    return found;
}

std::size_t StringEntry::list_size(const std::byte* stored, std::size_t available) noexcept
{
    std::size_t size = items_at;
    auto left = load_number<std::uint32_t>(stored + item_count_at);
    if (left > most_items)
        return 0;
    for (; left > 0; --left) {
        if (available - size < min_item_size || load_number<std::uint32_t>(stored + size) >= index_limit)
            return 0;
        const std::size_t item = size_with_text(stored + size, available - size, item_text_at);
        if (item == 0)
            return 0;
        size += item;
    }
    return size;
}

} // namespace tidelink
