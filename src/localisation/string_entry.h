#pragma once

#include "localisation/little_endian.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tidelink {

/// One entry of a string pack. It refers to the pack's memory and copies nothing.
///
/// A text is served where it is stored, which is at an odd address when the headers in front of it are of odd length.
/// The x86-64 processors read it there like anywhere else, and so do the system's functions; code compiled with
/// alignment checks has to copy the bytes of such a text before it looks inside. The packs that this project builds
/// keep their texts at even addresses.
class StringEntry {
public:
    /// Without content: to be assigned to before it is asked anything.
    StringEntry() noexcept = default;

    /// The entry whose stored form begins at `stored`. The caller has found all of it to be within the pack.
    explicit StringEntry(const std::byte* stored) noexcept
        : stored_(stored), id_(load_number<std::uint32_t>(stored)),
          length_(is_list(stored) ? std::uint16_t{0} : load_number<std::uint16_t>(stored + length_at)),
          kind_(kind_of(load_number<std::uint32_t>(stored + kind_and_revision_at)))
    {}

    /// Where the stored form begins.
    const std::byte* stored() const noexcept { return stored_; }

    std::uint32_t id() const noexcept { return id_; }

    /// Revision of the English text that this entry was made for, 30 bits.
    std::uint32_t revision() const noexcept
    {
        return load_number<std::uint32_t>(stored_ + kind_and_revision_at) >> revision_shift;
    }

    /// Whether both were made for the same revision, and both are single texts or both are lists. As a rule this looks
    /// at neither pack.
    bool is_like(const StringEntry& other) const noexcept
    {
        return kind_ == other.kind_ && ((kind_ & long_revision) < long_revision || revision() == other.revision());
    }

    /// The text, with a null unit behind it, so that data() may go to a function that wants one. Empty for a list, and
    /// then without that promise.
    std::u16string_view text() const noexcept { return view(stored_ + text_at, length_); }

    bool is_list() const noexcept { return (kind_ & list_flag) != 0; }

    /// The item of a list at `index`: when several were stored for the index, the last one. Empty where there is none,
    /// and for a single text. Followed by a null unit. Takes time in proportion to the number of items.
    std::u16string_view item(std::uint32_t index) const noexcept;

    /// Calls `visit(index, text)` for each stored item of a list, in stored order; for a single text never.
    template <typename Visit>
    void for_each_item(Visit visit) const
    {
        if (!is_list(stored_))
            return;
        const std::byte* item = stored_ + items_at;
        for (auto left = load_number<std::uint32_t>(stored_ + item_count_at); left > 0; --left) {
            const std::size_t length = load_number<std::uint16_t>(item + item_length_at);
            visit(load_number<std::uint32_t>(item), view(item + item_text_at, length));
            item += item_text_at + (length + 1) * sizeof(char16_t);
        }
    }

    /// Bytes that the stored entry takes which begins at `stored`, of which `available` bytes may be read. 0 when it is
    /// malformed: a length or count leads further, a text is not followed by its null, a list has more than 1,024
    /// items, or an item's index is 65,536 or more.
    static std::size_t stored_size(const std::byte* stored, std::size_t available) noexcept
    {
        if (available < min_stored_size)
            return 0;
        return is_list(stored) ? list_size(stored, available) : size_with_text(stored, available, text_at);
    }

    /// No stored entry is shorter.
    static constexpr std::size_t min_stored_size = 12;

private:
    // The stored form: id, kind and revision; for a single text its length and its units; for a list the number of
    // items and for each of them index, length and units. A null unit follows every text.
    static constexpr std::size_t kind_and_revision_at = 4;
    static constexpr std::uint32_t kind_mask = 3;
    static constexpr unsigned revision_shift = 2;
    static constexpr std::size_t length_at = 8;
    static constexpr std::size_t text_at = 10;
    static constexpr std::size_t item_count_at = 8;
    static constexpr std::size_t items_at = 12;
    // An item of a list: its index, the length of its text, the units.
    static constexpr std::size_t item_length_at = 4;
    static constexpr std::size_t item_text_at = 6;

    static constexpr std::uint32_t list_flag = 0x8000;
    static constexpr std::uint32_t long_revision = 0x7FFF;

    static std::uint16_t kind_of(std::uint32_t kind_and_revision) noexcept
    {
        const std::uint32_t revision = kind_and_revision >> revision_shift;
        return static_cast<std::uint16_t>((revision < long_revision ? revision : long_revision) |
                                          ((kind_and_revision & kind_mask) != 0 ? list_flag : 0));
    }

    /// The one place where stored bytes become a text.
    static std::u16string_view view(const std::byte* units, std::size_t length) noexcept
    {
        return {reinterpret_cast<const char16_t*>(units), length};
    }

    static bool is_list(const std::byte* stored) noexcept
    {
        return (load_number<std::uint32_t>(stored + kind_and_revision_at) & kind_mask) != 0;
    }

    /// Bytes of a text with its null, and of the `before` bytes in front of it, the last two of which are its length; 0
    /// when it is malformed.
    static std::size_t size_with_text(const std::byte* stored, std::size_t available, std::size_t before) noexcept
    {
        const std::size_t length = load_number<std::uint16_t>(stored + before - sizeof(std::uint16_t));
        const std::size_t size = before + (length + 1) * sizeof(char16_t);
        if (size > available || load_number<std::uint16_t>(stored + size - sizeof(char16_t)) != 0)
            return 0;
        return size;
    }

    static std::size_t list_size(const std::byte* stored, std::size_t available) noexcept;

    const std::byte* stored_;
    std::uint32_t id_;
    std::uint16_t length_;
    std::uint16_t kind_; ///< list_flag, and the revision or for all that are greater long_revision
};

} // namespace tidelink
