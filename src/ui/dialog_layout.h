#pragma once

#include "base/handles.h"
#include "ui/control_measure.h"
#include "ui/layout.h"
#include "ui/scroll_bar.h"

#include <windows.h>

#include <functional>

namespace girder::ui {

/// Centres the window on its owner, or on the work area when there is none; always wholly inside the work area when it
/// fits there.
void centre_on_owner(HWND dialog, HWND owner) noexcept;

/// Font and arrangement of one dialog at its current DPI; what the work area has no room for is scrolled to, and comes
/// into sight when it gets the focus. Owns the font that the controls use, so it outlives them.
class dialog_layout {
public:
    /// Describes the arrangement from the controls' present texts; the box may refer to the measure.
    using description = std::function<box(const control_measure&)>;

    /// Sets the dialog font for the DPI, measures the controls in it, and moves every control to its place in one step.
    /// The dialog gets the natural size of its arrangement, but never more than the work area of its monitor. With
    /// DS_CENTER in its template it stays centred where it was, else its top left corner stays.
    /// \throws system_error
    void apply(HWND dialog, UINT dpi, const description& describe);
    /// The same at the corner, on the monitor and of at least the size of `suggested`, a window's rectangle in screen
    /// pixels: what WM_DPICHANGED brings along.
    void apply(HWND dialog, UINT dpi, const RECT& suggested, const description& describe);

    /// 0 before the first apply().
    UINT dpi() const noexcept { return dpi_; }

    /// WM_HSCROLL, WM_VSCROLL, WM_MOUSEWHEEL. \return whether the message was for one of the dialog's own scroll bars
    bool on_message(HWND dialog, UINT message, WPARAM wparam);
    /// Scrolls until the control is in sight.
    void reveal(HWND control) noexcept;

private:
    control_measure use_dpi(HWND dialog, UINT dpi);
    void place(HWND dialog, const box& root, const area& place, const extent& frame);
    void scroll(HWND dialog, int across, int down) noexcept;

    unique_font font_;
    UINT dpi_ = 0;
    scroll_bar across_{SB_HORZ};
    scroll_bar down_{SB_VERT};
};

} // namespace girder::ui
