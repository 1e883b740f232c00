#include "localisation/string_entry.h"

namespace tidelink {

namespace {

// An item of a list: its index, then the length of its text and the units.
constexpr std::size_t item_length_at = 4;
constexpr std::size_t item_text_at = 6;

/// Bytes of a text with its null, where `before` bytes stand in front of it; 0 when it is malformed.
std::size_t size_with_text(const std::byte* stored, std::size_t available, std::size_t before) noexcept
{
    constexpr std::size_t null_size = sizeof(char16_t);
    if (available < before + null_size)
        return 0;
    const std::size_t null_at =
        before + load_number<std::uint16_t>(stored + before - sizeof(std::uint16_t)) * std::size_t{2};
    if (available < null_at + null_size || load_number<std::uint16_t>(stored + null_at) != 0)
        return 0;
    return null_at + null_size;
}

} // namespace

std::u16string_view StringEntry::item(std::uint32_t index) const noexcept
{
    std::u16string_view found = no_text;
    if (!is_list_)
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

std::size_t StringEntry::stored_size(const std::byte* stored, std::size_t available) noexcept
{
    if (available < min_stored_size)
        return 0;
    if ((load_number<std::uint32_t>(stored + kind_and_revision_at) & kind_mask) == 0)
        return size_with_text(stored, available, text_at);

    std::size_t size = items_at;
    for (auto left = load_number<std::uint32_t>(stored + item_count_at); left > 0; --left) {
        const std::size_t item = size_with_text(stored + size, available - size, item_text_at);
        if (item == 0)
            return 0;
        size += item;
    }
    return size;
}

} // namespace tidelink
