#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// Windows of another process, looked at and operated from outside. Everything that waits does so by polling, with a
// time limit.

namespace ui_driver {

/// The other process did not do within `patience` what it was waited for.
class timed_out : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// SendMessageTimeoutW. \throws timed_out, also when the window is gone
LRESULT send(HWND window, UINT message, WPARAM wparam = 0, LPARAM lparam = 0);

class control {
public:
    explicit control(HWND window) noexcept : window_(window) {}

    HWND handle() const noexcept { return window_; }
    int id() const noexcept { return ::GetDlgCtrlID(window_); }
    bool enabled() const noexcept { return ::IsWindowEnabled(window_) != FALSE; }
    /// \throws timed_out
    std::u16string text() const;

    /// Of a check box or radio button. \throws timed_out
    bool checked() const;

    /// Clicks a button, and waits until its command has been carried out. \throws timed_out
    void click() const;
    /// Clicks a button whose command may open a modal box, without waiting.
    void post_click() const;

private:
    HWND window_;
};

class dialog {
public:
    explicit dialog(HWND window) noexcept : window_(window) {}

    HWND handle() const noexcept { return window_; }
    bool exists() const noexcept { return ::IsWindow(window_) != FALSE; }

    /// \throws std::out_of_range when there is no such control
    control item(int id) const;
    bool has(int id) const noexcept { return ::GetDlgItem(window_, id) != nullptr; }

    /// The id of the control with the keyboard focus, 0 when none of this thread's windows has it.
    int focused() const noexcept;

    /// Asks the window to close, as its close box does, without waiting.
    void post_close() const noexcept;
    /// Waits until the window is gone. \throws timed_out
    void wait_until_closed() const;

private:
    HWND window_;
};

/// Of process `process`, or of any when it is 0: the visible top-level windows with that title.
std::vector<dialog> find_dialogs(std::u16string_view title, DWORD process = 0);

/// Waits until there is such a window and it is enabled: no modal box stands before it. \throws timed_out
dialog wait_for_dialog(std::u16string_view title, DWORD process = 0);

} // namespace ui_driver
