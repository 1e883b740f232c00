#pragma once

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <stdexcept>
#include <vector>

namespace support {

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

/// What `count` tells once it has told the same for that long.
template <typename Count>
auto settled(Count count, std::chrono::milliseconds quiet)
{
    constexpr DWORD interval_ms = 50;
    auto last = count();
    for (auto since = std::chrono::steady_clock::now(); std::chrono::steady_clock::now() - since < quiet;) {
        ::Sleep(interval_ms);
        if (auto now = count(); now != last) {
            last = now;
            since = std::chrono::steady_clock::now();
        }
    }
    return last;
}

/// The system's thread pools end a thread that was idle for 5 s.
inline constexpr std::chrono::seconds idle_threads_are_gone{6};

} // namespace support
