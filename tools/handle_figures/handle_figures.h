#pragma once

#include <windows.h>

#include <winternl.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace handle_figures {

/// How many kernel handles a process has open (NtQuerySystemInformation). GetProcessHandleCount would be the documented
/// way, but Wine's always tells 0.
inline std::size_t handle_count(DWORD process = ::GetCurrentProcessId())
{
    struct entry {
        void* object;
        ULONG_PTR process;
        ULONG_PTR handle;
        ULONG access;
        USHORT creator;
        USHORT type;
        ULONG attributes;
        ULONG reserved;
    };
    struct header {
        ULONG_PTR count;
        ULONG_PTR reserved;
    };
    constexpr int extended_handle_information = 64;
    constexpr LONG length_mismatch = static_cast<LONG>(0xC0000004);
    using query = LONG WINAPI(int kind, void* buffer, ULONG size, ULONG* needed);
    auto* const query_system = reinterpret_cast<query*>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));

    std::vector<std::byte> buffer(1U << 16U);
    LONG status = 0;
    while ((status = query_system(extended_handle_information, buffer.data(), static_cast<ULONG>(buffer.size()),
                                  nullptr)) == length_mismatch)
        buffer.resize(buffer.size() * 2);
    if (status < 0)
        throw std::runtime_error("NtQuerySystemInformation");
    const auto* const list = reinterpret_cast<const header*>(buffer.data());
    const auto* const first = reinterpret_cast<const entry*>(list + 1);
    return static_cast<std::size_t>(
        std::count_if(first, first + list->count, [&](const entry& each) { return each.process == process; }));
}

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
                             static_cast<void*>(&table), sizeof table, nullptr) ||
        !::ReadProcessMemory(process, table, entries.data(), entries.size() * sizeof(entry), nullptr))
        throw std::runtime_error("the table of GDI objects");
    return static_cast<std::size_t>(std::ranges::count_if(entries, [](const entry& each) { return each.type != 0; }));
}

/// How far the process's tables of kernel, GDI and window-system objects are filled: the highest numbers that many
/// fresh objects get. The tables give out what is free from the bottom, so each lost object raises its number by one
/// place. (The system's own counters are not kept everywhere.)
inline std::array<std::uintptr_t, 3> handle_marks()
{
    constexpr int fresh = 512;
    const auto highest = [](auto create, auto destroy, std::uintptr_t mask) {
        std::vector<decltype(create())> objects;
        std::uintptr_t mark = 0;
        for (int i = 0; i < fresh; ++i) {
            objects.push_back(create());
            mark = std::max(mark, reinterpret_cast<std::uintptr_t>(objects.back()) & mask);
        }
        for (const auto object : objects)
            destroy(object);
        return mark;
    };
    constexpr std::uintptr_t whole = UINTPTR_MAX;
    constexpr std::uintptr_t index = 0xFFFF;
    return {highest([] { return ::CreateEventW(nullptr, TRUE, FALSE, nullptr); }, ::CloseHandle, whole),
            highest([] { return ::CreateSolidBrush(0x123456); }, ::DeleteObject, index),
            highest([] { return ::CreateMenu(); }, ::DestroyMenu, index)};
}

} // namespace handle_figures
