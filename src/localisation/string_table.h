#pragma once

#include "localisation/string_layer.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace tidelink {

/// The texts of one string module: its packs, one laid over the other, and those of the module beneath it.
///
/// Packs are not copied: the memory of each has to outlive the table. A built table is only read, by any thread.
class StringTable {
public:
    /// Without any layer.
    StringTable() = default;

    /// A table that starts with the layers which `lower` has now, and shares them.
    static StringTable above(const StringTable& lower);

    /// Reads a pack and makes it the top layer. A pack that is refused (see StringLayer::read) changes nothing, and
    /// neither does a pack at a null address.
    ///
    /// \return whether the table has a layer afterwards; true for a null address
    bool layer(std::span<const std::byte> pack, pack_form form);

    /// Lays the built-in pack, which has a signature, and over it the module of a language pack. Either may be at a
    /// null address.
    void load(std::span<const std::byte> built_in, std::span<const std::byte> translation);

    /// Whether `load` accepted its built-in pack, whatever became of the other one.
    bool loaded() const noexcept { return loaded_; }

    /// \throws std::runtime_error "string not found" when no layer has the id: the program is at fault, so this is not
    ///         caught near the call
    const StringEntry& find(std::uint32_t id) const
    {
        const StringEntry* const entry = find_or_null(id);
        if (entry == nullptr)
            throw_not_found();
        return *entry;
    }

    const StringEntry* find_or_null(std::uint32_t id) const noexcept
    {
        return top_ != nullptr ? top_->find(id) : nullptr;
    }

    /// The text of an entry; empty for a list.
    /// \throws std::runtime_error as `find`
    std::u16string_view text(std::uint32_t id) const { return find(id).text(); }

    /// An item of a list; empty where the list has none at the index, and for a single text.
    /// \throws std::runtime_error as `find`
    std::u16string_view item(std::uint32_t id, std::uint32_t index) const { return find(id).item(index); }

private:
    [[noreturn]] static void throw_not_found();

    std::shared_ptr<const StringLayer> top_;
    bool loaded_ = false;
};

} // namespace tidelink
