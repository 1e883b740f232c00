#pragma once

#include "localisation/string_entry.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace tidelink {

/// How a string pack begins: the resources of the program have a signature, the modules of a pack file have none.
enum class pack_form { bare, with_signature };

/// A string pack laid over the layer beneath it: all that a lookup finds which starts here. Read-only.
///
/// The layers are merged while they are read. A lookup therefore takes one search however many there are, and the layer
/// does not need the object beneath it any more. The memory of all their packs has to outlive it.
class StringLayer {
public:
    /// Reads a pack. Of several entries for an id the first one counts. An entry is dropped as stale when the layer
    /// beneath has its id with another revision.
    ///
    /// \param pack     begins with the pack; what follows the pack is ignored
    /// \param beneath  may be null
    /// \return nothing when the signature is not the right one or the pack is malformed: a length or count leads out of
    ///         `pack`, or a text is not followed by its null. Nothing outside `pack` is read, and the memory taken is
    ///         in proportion to its size.
    static std::optional<StringLayer> read(std::span<const std::byte> pack, pack_form form, const StringLayer* beneath);

    /// The C runtime's name of the pack's locale, such as "ENU"; in the pack's memory, followed by a null.
    std::string_view locale_name() const noexcept { return locale_name_; }

    /// The pack's language, such as "en"; in the pack's memory, followed by a null.
    std::string_view language_tag() const noexcept { return language_tag_; }

    /// Null when no layer has the id. Lives as long as this layer.
    const StringEntry* find(std::uint32_t id) const noexcept
    {
        const StringEntry* slot = &slots_[home(id)];
        for (const StringEntry* const end = slot + probe_limit; slot != end; ++slot) {
            if (!*slot)
                return nullptr;
            if (slot->id() == id)
                return slot;
        }
        return find_overflown(id);
    }

private:
    /// No search looks at more slots, whatever ids a pack may hold.
    static constexpr std::size_t probe_limit = 32;

    StringLayer() = default;

    bool read_entries(std::span<const std::byte> rest, const StringLayer* beneath);
    void make_room(std::size_t entries);
    void insert(const StringEntry& entry);
    void insert_all_of(const StringLayer& beneath);
    const StringEntry* find_overflown(std::uint32_t id) const noexcept;

    /// Where the search for an id begins: multiplicative hashing, the top bits of the product.
    std::size_t home(std::uint32_t id) const noexcept { return (id * 0x9E3779B1U) >> shift_; }

    std::string_view locale_name_;
    std::string_view language_tag_;
    std::size_t entries_ = 0;
    unsigned shift_ = 0;
    std::vector<StringEntry> slots_; // open addressing: a power of two of homes, and room behind the last one
    std::map<std::uint32_t, StringEntry> overflow_; // those that found no slot within their limit
};

} // namespace tidelink
