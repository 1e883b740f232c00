#include "localisation/string_tables.h"

#include <windows.h>

namespace tidelink {

namespace {

constexpr WORD program_strings_resource = 133;
constexpr WORD common_strings_resource = 134;

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

} // namespace

void initialise()
{
    string_packs packs;
    packs.common = built_in_pack(common_strings_resource);
    packs.program = built_in_pack(program_strings_resource);
    build_string_tables(packs);
}

} // namespace tidelink
