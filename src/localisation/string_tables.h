#pragma once

#include "localisation/string_table.h"
#include "string_ids.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace tidelink {

/// Where the packs of the two string modules lie in memory; a pack that there is none of is at a null address.
struct string_packs {
    std::span<const std::byte> common;              ///< built in, with signature
    std::span<const std::byte> program;             ///< built in, with signature
    std::span<const std::byte> common_translation;  ///< module of a language pack
    std::span<const std::byte> program_translation; ///< module of a language pack
};

/// Builds the two tables of the process, in place of what they were. The packs have to live until the process ends or
/// the tables are built again. To be called before any text is fetched; from then on every thread may read.
void build_string_tables(const string_packs& packs);

/// Builds the two tables of the process from the program's own resources. Windows only.
void initialise();

/// The texts shared with the maker's other tools.
const StringTable& common_strings() noexcept;

/// The program's own texts, over the common ones.
const StringTable& program_strings() noexcept;

namespace detail {

/// The single texts of string_slot::ids as the program table has them, at null where it has none.
extern std::array<std::u16string_view, string_slot::count> texts_by_slot;

} // namespace detail

/// The program's text for an id, empty for a list. For a constant of string_id this is little more than an array
/// access.
/// \throws std::runtime_error "string not found" as StringTable::find
inline std::u16string_view text(std::uint32_t id)
{
    const std::size_t slot = string_slot::of(id);
    if (slot < string_slot::count) {
        const std::u16string_view text = detail::texts_by_slot[slot];
        if (text.data() != nullptr) [[likely]]
            return text;
    }
    return program_strings().text(id);
}

/// An item of the program's list for an id, as StringTable::item.
/// \throws std::runtime_error "string not found" as StringTable::find
inline std::u16string_view item(std::uint32_t id, std::uint32_t index)
{
    return program_strings().item(id, index);
}

} // namespace tidelink
