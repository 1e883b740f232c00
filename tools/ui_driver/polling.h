#pragma once

#include <windows.h>

#include <chrono>

namespace ui_driver {

/// How long a window of another process may take for anything that it is asked for.
constexpr std::chrono::milliseconds patience{20'000};
constexpr std::chrono::milliseconds polling_interval{5};

/// Asks again and again until the condition holds. \return false when it still does not after `limit`
template <typename Condition>
bool eventually(Condition condition, std::chrono::milliseconds limit = patience)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        ::Sleep(static_cast<DWORD>(polling_interval.count()));
    }
    return true;
}

} // namespace ui_driver
