#pragma once

#include "localisation/string_entry.h"
#include "localisation/string_set.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

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
    /// beneath has its id with another revision, and one of a pack file also when its placeholders do not fit (see
    /// placeholders_fit).
    ///
    /// \param pack     begins with the pack; what follows the pack is ignored
    /// \param beneath  may be null
    /// \return nothing when the signature is not the right one or the pack is malformed: a length or count leads out of
    ///         `pack`, a text is not followed by its null, a list has more than 1,024 items, or an item has an index
    ///         of 65,536 or more. Nothing outside `pack` is read, and the memory and the time taken are in proportion
    ///         to its size.
    static std::optional<StringLayer> read(std::span<const std::byte> pack, pack_form form, const StringLayer* beneath);

    /// The C runtime's name of the pack's locale, such as "ENU"; in the pack's memory, followed by a null.
    std::string_view locale_name() const noexcept { return locale_name_; }

    /// The pack's language, such as "en"; in the pack's memory, followed by a null.
    std::string_view language_tag() const noexcept { return language_tag_; }

    /// Null when no layer has the id. Lives as long as this layer.
    const StringEntry* find(std::uint32_t id) const noexcept { return entries_.find(id); }

private:
    StringLayer(std::string_view locale_name, std::string_view language_tag, StringSet entries)
        : locale_name_(locale_name), language_tag_(language_tag), entries_(std::move(entries))
    {}

    std::string_view locale_name_;
    std::string_view language_tag_;
    StringSet entries_;
};

} // namespace tidelink
