#pragma once

#include "localisation/language_packs.h"
#include "localisation/string_table.h"
#include "string_ids.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tidelink {

/// Where the packs of the two string modules lie in memory; a pack that there is none of is at a null address.
struct string_packs {
    std::span<const std::byte> common;              ///< built in, with signature
    std::span<const std::byte> program;             ///< built in, with signature
    std::span<const std::byte> common_translation;  ///< module of a language pack
    std::span<const std::byte> program_translation; ///< module of a language pack
};

/// Builds the two tables of the process, in place of what they were. When one module of a language pack is malformed,
/// none of that pack is used. The packs have to live until the process ends or the tables are built again. To be called
/// before any text is fetched; from then on every thread may read.
void build_string_tables(const string_packs& packs);

/// Looks for the language packs beside the program and builds the two tables of the process from the program's own
/// resources and the pack of a language. To be called once, when the settings have been read. The corrections mode is
/// on when the folder of the packs has a file `corrections.on`. Windows only.
///
/// \param executable_folder  without a separator at its end
/// \param language           the locale of the pack to use, found by exactly this name; "en" uses none; empty chooses
///                           by the user's locale
/// \return `language`, or when that is empty the choice, which may be empty too
std::u16string initialise(std::u16string_view executable_folder, std::u16string language);

/// The language packs that `initialise` found.
std::span<const LanguagePackInfo> language_packs() noexcept;

/// The built-in language, whose texts need no pack.
inline constexpr std::u16string_view built_in_language = u"en";

/// Switches the collecting of corrections on or off for both tables.
void set_corrections_mode(bool on) noexcept;

/// Keeps the corrected text of a constant of string_id in the table whose module has the string, by the string's key.
/// Only in the corrections mode.
void correct_string(std::uint32_t id, std::u16string_view text);

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
