#pragma once

#include "handle_figures/handle_figures.h"

#include <windows.h>

#include <cstddef>

namespace support {

using handle_figures::gdi_object_count;

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
