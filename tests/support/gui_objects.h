#pragma once

#include <windows.h>

#include <winternl.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace support {

/// How many GDI objects a process has. GetGuiResources would be the documented way, but Wine's always tells 0; its
/// table of them is where the system's was before.
inline std::size_t gdi_object_count(HANDLE process)
{
    if (const DWORD told = ::GetGuiResources(process, GR_GDIOBJECTS))
        return told;
    struct entry {
        std::uint64_t object;
        std::uint32_t owner;
        std::uint16_t unique;
        std::uint8_t type; // 0: free
        std::uint8_t flags;
        std::uint64_t data;
    };
    constexpr std::size_t table_in_environment_block = 0xF8;
    constexpr std::size_t most_entries = 0x10000;
    const auto query = reinterpret_cast<decltype(&::NtQueryInformationProcess)>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "NtQueryInformationProcess")));
    PROCESS_BASIC_INFORMATION basic{};
    const std::byte* table = nullptr;
    std::vector<entry> entries(most_entries);
    if (query(process, ProcessBasicInformation, &basic, sizeof basic, nullptr) < 0 ||
        !::ReadProcessMemory(process, reinterpret_cast<std::byte*>(basic.PebBaseAddress) + table_in_environment_block,
                             &table, sizeof table, nullptr) ||
        !::ReadProcessMemory(process, table, entries.data(), entries.size() * sizeof(entry), nullptr))
        throw std::runtime_error("the table of GDI objects");
    return static_cast<std::size_t>(std::ranges::count_if(entries, [](const entry& each) { return each.type != 0; }));
}

/// How many windows a process has, visible or not.
inline std::size_t window_count(DWORD process)
{
    struct search {
        DWORD process;
        std::size_t found;
    } wanted{process, 0};
    const auto count = [](HWND window, LPARAM into) -> BOOL {
        auto& counting = *reinterpret_cast<search*>(into);
        DWORD owner = 0;
        ::GetWindowThreadProcessId(window, &owner);
        counting.found += owner == counting.process ? 1 : 0;
        return TRUE;
    };
    ::EnumChildWindows(::GetDesktopWindow(), count, reinterpret_cast<LPARAM>(&wanted));
    for (HWND window = nullptr; (window = ::FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr)) != nullptr;)
        count(window, reinterpret_cast<LPARAM>(&wanted));
    return wanted.found;
}

} // namespace support
