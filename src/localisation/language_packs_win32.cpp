#include "base/handles.h"
#include "base/path.h"
#include "base/wide.h"
#include "localisation/language_packs.h"

namespace tidelink {

using girder::as_utf16;
using girder::as_wide;
using girder::joined_path;

std::vector<LanguagePackInfo> discoverPacks(std::u16string_view executable_folder)
{
    const std::u16string folder = joined_path(executable_folder, pack_folder_name);
    std::vector<LanguagePackInfo> packs;
    WIN32_FIND_DATAW found{};
    const girder::unique_find search(::FindFirstFileW(as_wide(joined_path(folder, u"*.lpack")), &found));
    if (!search)
        return packs;
    do {
        const std::u16string_view name = as_utf16(static_cast<const wchar_t*>(found.cFileName));
        LanguagePackInfo info = parse_pack_file_name(name);
        info.path = joined_path(folder, name);
        packs.push_back(std::move(info));
    } while (::FindNextFileW(search.get(), &found));
    return packs;
}

std::u16string chooseAutomatically(std::span<const LanguagePackInfo> packs)
{
    wchar_t locale[LOCALE_NAME_MAX_LENGTH]{};
    if (::GetUserDefaultLocaleName(locale, LOCALE_NAME_MAX_LENGTH) == 0)
        return {};
    return choose_automatically(as_utf16(static_cast<const wchar_t*>(locale)), packs);
}

} // namespace tidelink
