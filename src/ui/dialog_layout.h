#pragma once

#include "base/handles.h"
#include "ui/control_measure.h"
#include "ui/layout.h"
#include "ui/scroll_bar.h"

#include <windows.h>

#include <functional>

namespace girder::ui {

/// Gives every control of the dialog the font; the caller keeps the font while the dialog lives.
void set_dialog_font(HWND dialog, HFONT font) noexcept;

/// Sizes the dialog to the natural size of `root`, never beyond the work area of its monitor, and moves every control
/// to its place in one step. With DS_CENTER in its template the dialog stays centred where it was, else its top left
/// corner stays.
/// \param dpi  the DPI that the sizes in `root` are for
/// \return the height that the controls need; more than the dialog's where the work area has no room for it
/// \throws system_error
int lay_out_dialog(HWND dialog, const box& root, UINT dpi);

/// The same at the corner, on the monitor and of at least the size of `suggested`, a window's rectangle in screen
/// pixels: what WM_DPICHANGED brings along.
/// \throws system_error
int lay_out_dialog(HWND dialog, const box& root, UINT dpi, const RECT& suggested);

/// Centres the window on its owner, or on the work area when there is none; always wholly inside the work area when it
/// fits there.
void centre_on_owner(HWND dialog, HWND owner) noexcept;

/// Font and arrangement of one dialog at its current DPI; what the work area has no room for is scrolled to. Owns the
/// font that the controls use, so it outlives them.
class dialog_layout {
public:
    /// Describes the arrangement from the controls' present texts; the box may refer to the measure.
    using description = std::function<box(const control_measure&)>;

    /// Sets the dialog font for the DPI, measures the controls in it, and lays them out.
    /// \throws system_error
    void apply(HWND dialog, UINT dpi, const description& describe);
    void apply(HWND dialog, UINT dpi, const RECT& suggested, const description& describe);

    /// 0 before the first apply().
    UINT dpi() const noexcept { return dpi_; }

    /// WM_VSCROLL, WM_MOUSEWHEEL. \return whether the message was for the dialog's own scroll bar
    bool on_message(HWND dialog, UINT message, WPARAM wparam);
    /// Scrolls until the control is in sight.
    void reveal(HWND control) noexcept;

private:
    void set_content(HWND dialog, int height);
    static void scroll(HWND dialog, int distance) noexcept;
    control_measure use_dpi(HWND dialog, UINT dpi);

    unique_font font_;
    UINT dpi_ = 0;
    scroll_bar bar_{SB_VERT};
};

} // namespace girder::ui
