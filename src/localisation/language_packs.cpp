#include "localisation/language_packs.h"

#include <algorithm>

namespace tidelink {

namespace {

/// Takes the part before the next dot off the front, and the dot.
std::u16string_view take_part(std::u16string_view& rest) noexcept
{
    const std::u16string_view part = rest.substr(0, rest.find(u'.'));
    rest.remove_prefix(std::min(part.size() + 1, rest.size()));
    return part;
}

std::u16string lowered(std::u16string_view text)
{
    std::u16string result(text);
    for (char16_t& unit : result)
        if (unit >= u'A' && unit <= u'Z')
            unit = static_cast<char16_t>(unit + (u'a' - u'A'));
    return result;
}

} // namespace

PackVersion decode_pack_version(std::u16string_view text) noexcept
{
    std::uint32_t wrapping = 0;
    for (const char16_t unit : text)
        wrapping = wrapping * 10 + (unit - std::uint32_t{u'0'});
    const auto value = static_cast<std::int32_t>(wrapping);
    return {.major_part = static_cast<std::uint32_t>(value / 100'000'000),
            .minor_part = static_cast<std::uint32_t>(value / 1'000'000 % 100),
            .revision = static_cast<std::uint32_t>(value / 10'000 % 100),
            .build = static_cast<std::uint32_t>(value % 10'000)};
}

LanguagePackInfo parse_pack_file_name(std::u16string_view file_name)
{
    LanguagePackInfo info;
    info.locale = take_part(file_name);
    info.name = take_part(file_name);
    info.version = decode_pack_version(take_part(file_name));
    return info;
}

const LanguagePackInfo* find_pack(std::span<const LanguagePackInfo> packs, std::u16string_view locale) noexcept
{
    const auto found = std::ranges::find(packs, locale, &LanguagePackInfo::locale);
    return found != packs.end() ? &*found : nullptr;
}

std::u16string choose_automatically(std::u16string_view locale, std::span<const LanguagePackInfo> packs)
{
    std::u16string name = lowered(locale);
    if (find_pack(packs, name) != nullptr)
        return name;
    const std::size_t dash = name.find(u'-');
    if (dash == std::u16string::npos)
        return {};
    name.resize(dash);
    return find_pack(packs, name) != nullptr ? name : std::u16string();
}

} // namespace tidelink
