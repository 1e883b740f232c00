#pragma once

#include "async/ui_thread.h"
#include "base/handles.h"

#include <windows.h>

#include <cstdint>
#include <map>
#include <optional>

namespace tidelink {

/// Where a translator corrects texts in the running program. While the object lives, and the string tables are in the
/// corrections mode, every dialog of the thread has tooltips with the keys of its controls' strings, and F2 on a
/// control opens a box for its text. The destructor writes the corrections into the user's Documents folder.
///
/// Without the corrections mode it does nothing. One at a time, created and destroyed on the user-interface thread
/// after the string tables are built.
class corrections_mode {
public:
    /// \param thread  runs the box; outlives the object
    /// \throws girder::system_error
    explicit corrections_mode(girder::ui_thread& thread);
    corrections_mode(const corrections_mode&) = delete;
    corrections_mode& operator=(const corrections_mode&) = delete;
    ~corrections_mode();

private:
    static LRESULT CALLBACK on_message(int code, WPARAM removal, LPARAM message) noexcept;
    static LRESULT CALLBACK on_window(int code, WPARAM window, LPARAM details) noexcept;

    void name_controls(HWND dialog);
    std::optional<std::uint32_t> string_of(HWND control);
    void correct_later(HWND control) noexcept;
    void correct(HWND control) noexcept;

    girder::ui_thread& thread_;
    std::map<HWND, std::uint32_t> strings_; ///< of the controls in the dialogs that have been active
    std::map<HWND, HWND> tooltips_;         ///< by dialog
    girder::unique_hook message_hook_;
    girder::unique_hook window_hook_;
};

} // namespace tidelink
