#include "base/handles.h"
#include "base/path.h"
#include "base/program.h"
#include "base/wide.h"
#include "localisation/language_pack.h"
#include "localisation/string_tables.h"

#include <windows.h>

namespace tidelink {

namespace {

constexpr WORD program_strings_resource = 133;
constexpr WORD common_strings_resource = 134;

std::vector<LanguagePackInfo> packs_beside_the_program;

/// The texts of a language pack are served from it, so it stays mapped as long as the process lives.
girder::unique_view mapped_pack;

/// Resource memory lives as long as the module. At a null address when there is no such resource.
std::span<const std::byte> built_in_pack(WORD resource) noexcept
{
    const HMODULE executable = ::GetModuleHandleW(nullptr);
    const HRSRC found = ::FindResourceW(executable, MAKEINTRESOURCEW(resource), L"STRINGS");
    if (found == nullptr)
        return {};
    const HGLOBAL memory = ::LoadResource(executable, found);
    if (memory == nullptr)
        return {};
    return {static_cast<const std::byte*>(::LockResource(memory)), ::SizeofResource(executable, found)};
}

/// Maps the file in place of the one before. Empty, and nothing mapped, when it cannot be mapped or is no language
/// pack.
std::span<const std::byte> map_pack(const std::u16string& path) noexcept
{
    mapped_pack.reset();
    const girder::unique_file file(::CreateFileW(girder::as_wide(path), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                                 OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size{};
    if (!file || !::GetFileSizeEx(file.get(), &size))
        return {};
    const girder::unique_kernel_handle mapping(::CreateFileMappingW(file.get(), nullptr, PAGE_READONLY, 0, 0, nullptr));
    if (!mapping)
        return {};
    mapped_pack.reset(::MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0));
    if (!mapped_pack)
        return {};
    const std::span pack(static_cast<const std::byte*>(mapped_pack.get()), static_cast<std::size_t>(size.QuadPart));
    if (is_language_pack(pack))
        return pack;
    mapped_pack.reset();
    return {};
}

bool is_in_pack_folder(std::u16string_view executable_folder, std::u16string_view file)
{
    const std::u16string path = girder::joined_path(girder::joined_path(executable_folder, pack_folder_name), file);
    return ::GetFileAttributesW(girder::as_wide(path)) != INVALID_FILE_ATTRIBUTES;
}

} // namespace

std::u16string initialise(std::u16string_view executable_folder, std::u16string language)
{
    packs_beside_the_program = discoverPacks(executable_folder);
    if (language.empty())
        language = chooseAutomatically(packs_beside_the_program);

    std::span<const std::byte> pack;
    if (!language.empty() && language != built_in_language)
        if (const LanguagePackInfo* const info = find_pack(packs_beside_the_program, language))
            pack = map_pack(info->path);
    build_string_tables({.common = built_in_pack(common_strings_resource),
                         .program = built_in_pack(program_strings_resource),
                         .common_translation = findModule(pack, u"common"),
                         .program_translation = findModule(pack, girder::file_name_of(girder::program_path()))});
    set_corrections_mode(is_in_pack_folder(executable_folder, u"corrections.on"));
    return language;
}

std::span<const LanguagePackInfo> language_packs() noexcept
{
    return packs_beside_the_program;
}

} // namespace tidelink
