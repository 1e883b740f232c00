#include "update/announcements.h"

#include "base/utf.h"
#include "update/encoded_version.h"
#include "update/https.h"

#include <algorithm>
#include <vector>

namespace tidelink {
namespace {

constexpr std::size_t longest_text = 80;
/// More than the shell takes.
constexpr std::size_t longest_address = 2048;

constexpr bool breaks_line(char16_t unit) noexcept
{
    return unit < u' ' || (unit >= 0x7F && unit < 0xA0) || unit == 0x2028 || unit == 0x2029;
}

/// The first pack that may replace the installed one; null when there is none.
const OfferedPack* newer_than(const LanguagePackInfo& installed, const std::vector<OfferedPack>& offered,
                              std::uint32_t own_version)
{
    for (const OfferedPack& pack : offered) {
        // The two kinds of versions name their last two parts the other way round.
        const girder::product_version version = decode(pack.version);
        if (pack.locale == installed.locale && pack.client_version <= own_version &&
            PackVersion{version.major, version.minor, version.build, version.revision} > installed.version)
            return &pack;
    }
    return nullptr;
}

} // namespace

const Promo* current_promo(const Manifest& manifest, day_number today)
{
    const bool shown = manifest.promo && today <= manifest.promo->expires_on &&
                       girder::http::is_https(manifest.promo->url) && manifest.promo->url.size() <= longest_address;
    return shown ? &*manifest.promo : nullptr;
}

std::u16string newer_packs(const Manifest& manifest, std::span<const LanguagePackInfo> installed,
                           std::uint32_t own_version)
{
    std::u16string names;
    if (!manifest.language_packs)
        return names;
    for (const LanguagePackInfo& pack : installed) {
        // Of several installed packs of one locale the first is in use.
        const OfferedPack* const newer = find_pack(installed, pack.locale) == &pack
                                             ? newer_than(pack, *manifest.language_packs, own_version)
                                             : nullptr;
        if (!newer)
            continue;
        if (!names.empty())
            names += u", ";
        names += single_line(newer->name);
    }
    return names;
}

std::u16string single_line(std::u16string_view text)
{
    std::u16string line(text.substr(0, longest_text));
    std::ranges::replace_if(line, breaks_line, u' ');
    if (line.size() < text.size()) {
        if (girder::is_high_surrogate(line.back()))
            line.pop_back();
        line += u'…';
    }
    return line;
}

} // namespace tidelink
