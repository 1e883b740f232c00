#pragma once

#include "handle_figures/handle_figures.h"

#include <windows.h>

#include <chrono>

namespace support {

using handle_figures::handle_count;

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
