#pragma once

#include "localisation/string_layer.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace tidelink {

/// Corrected texts by the keys of their strings, in the order in which they are exported.
using Corrections = std::map<std::u16string, std::u16string>;

/// The texts of one string module: its packs, one laid over the other, and those of the module beneath it.
///
/// Packs are not copied: the memory of each has to outlive the table. A built table is only read, by any thread.
class StringTable {
public:
    /// Without any layer.
    StringTable() = default;

    /// A table that starts with the layers which `lower` has now, and shares them, and is in its corrections mode.
    static StringTable above(const StringTable& lower);

    /// Reads a pack and makes it the top layer. A pack that is refused (see StringLayer::read) changes nothing, and
    /// neither does a pack at a null address.
    ///
    /// \return whether the table has a layer afterwards; true for a null address
    bool layer(std::span<const std::byte> pack, pack_form form);

    /// Lays the built-in pack, which has a signature, and over it the module of a language pack. Either may be at a
    /// null address.
    /// \return false when the module was refused
    bool load(std::span<const std::byte> built_in, std::span<const std::byte> translation);

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

    /// Whether a translator's corrections are collected. Off at first.
    bool corrections_mode() const noexcept { return corrections_mode_; }
    void set_corrections_mode(bool on) noexcept { corrections_mode_ = on; }

    /// Keeps the corrected text of a string for the export; the table goes on serving the text it has. Nothing when
    /// the corrections mode is off. \param key  what the string's id is the hash of
    void correct(std::u16string_view key, std::u16string_view text);
    const Corrections& corrections() const noexcept { return corrections_; }

private:
    [[noreturn]] static void throw_not_found();

    std::shared_ptr<const StringLayer> top_;
    bool loaded_ = false;
    bool corrections_mode_ = false;
    Corrections corrections_;
};

} // namespace tidelink
