#pragma once

#include <windows.h>

#include <functional>
#include <utility>

namespace support {

/// Runs an action on this thread as soon as a modal dialog waits for input, with that dialog's window. One at a time.
class in_modal_loop {
public:
    explicit in_modal_loop(std::function<void(HWND)> action) : timer_(::SetTimer(nullptr, 0, USER_TIMER_MINIMUM, run))
    {
        pending() = std::move(action);
    }
    in_modal_loop(const in_modal_loop&) = delete;
    in_modal_loop& operator=(const in_modal_loop&) = delete;
    ~in_modal_loop() { ::KillTimer(nullptr, timer_); }

private:
    static std::function<void(HWND)>& pending()
    {
        static std::function<void(HWND)> action;
        return action;
    }

    static BOOL CALLBACK take_dialog(HWND window, LPARAM found)
    {
        if (::IsWindowVisible(window) && ::IsWindowEnabled(window) &&
            (::GetWindowLongPtrW(window, GWL_STYLE) & DS_MODALFRAME))
            *reinterpret_cast<HWND*>(found) = window;
        return TRUE;
    }

    static void CALLBACK run(HWND, UINT, UINT_PTR timer, DWORD)
    {
        HWND dialog = nullptr;
        ::EnumThreadWindows(::GetCurrentThreadId(), take_dialog, reinterpret_cast<LPARAM>(&dialog));
        if (!dialog)
            return;
        ::KillTimer(nullptr, timer);
        if (const auto action = std::exchange(pending(), nullptr))
            action(dialog);
    }

    UINT_PTR timer_;
};

} // namespace support
