#pragma once

#include "localisation/language_packs.h"
#include "update/manifest.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

// What the manifest tells besides the release.

namespace tidelink {

/// Null when there is no banner, when today is after its last day, and when it leads elsewhere than to https.
const Promo* current_promo(const Manifest& manifest, day_number today);

/// The names of the packs that are newer than the installed one of their locale, with a comma between them. One made
/// for a later utility is not among them: the upgrade comes first.
/// \param own_version  encoded version of this utility
std::u16string newer_packs(const Manifest& manifest, std::span<const LanguagePackInfo> installed,
                           std::uint32_t own_version);

/// A text from the network in one line, without control characters and short enough for a box.
std::u16string single_line(std::u16string_view text);

} // namespace tidelink
