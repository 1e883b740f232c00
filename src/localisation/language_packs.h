#pragma once

#include <compare>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tidelink {

/// The version in the name of a pack file. Compares part by part, in the order in which it is written.
struct PackVersion {
    std::uint32_t major_part = 0;
    std::uint32_t minor_part = 0;
    std::uint32_t revision = 0;
    std::uint32_t build = 0;

    auto operator<=>(const PackVersion&) const = default;
};

/// A pack file as its name describes it: `locale.name.version.lpack`.
struct LanguagePackInfo {
    std::u16string locale; ///< such as "de" or "pt-br"; compared as it is written
    std::u16string name;   ///< the language's own name, which the user chooses it by
    PackVersion version;
    std::u16string path;
};

/// Decodes a version that is written as one decimal number: 701001604 is 7.1.0.1604. Calculates with signed 32-bit
/// numbers that wrap. No character is rejected: each counts as much as it is behind '0'.
PackVersion decode_pack_version(std::u16string_view text) noexcept;

/// Takes the name of a pack file apart at its dots. Each part ends at a dot or with the name; a part that nothing is
/// left for is empty. The path stays empty.
LanguagePackInfo parse_pack_file_name(std::u16string_view file_name);

/// The first pack with exactly this locale; null when there is none.
const LanguagePackInfo* find_pack(std::span<const LanguagePackInfo> packs, std::u16string_view locale) noexcept;

/// Picks the pack that serves a user's locale.
///
/// \param locale  such as u"de-DE"; its letters A to Z are lowered, those of the packs are not, so that a pack whose
///                locale has capitals is never picked
/// \param packs   in the order in which they were found
/// \return the lowered locale when a pack has it, else its part before the first '-' when a pack has that, else empty:
///         the English texts are shown
std::u16string choose_automatically(std::u16string_view locale, std::span<const LanguagePackInfo> packs);

/// The folder of the pack files, which lies in that of the program.
inline constexpr std::u16string_view pack_folder_name = u"languages";

/// The pack files beside the program, in the order in which the file system lists them; their contents are not looked
/// at. None when there is no folder of packs. Windows only.
/// \param executable_folder  without a separator at its end
std::vector<LanguagePackInfo> discoverPacks(std::u16string_view executable_folder);

/// The same choice for the current user's locale (GetUserDefaultLocaleName). Windows only.
std::u16string chooseAutomatically(std::span<const LanguagePackInfo> packs);

} // namespace tidelink
