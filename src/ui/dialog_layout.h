#pragma once

#include "ui/layout.h"

#include <windows.h>

namespace girder::ui {

/// Gives every control of the dialog the font; the caller keeps the font while the dialog lives.
void set_dialog_font(HWND dialog, HFONT font) noexcept;

/// Sizes the dialog to the natural size of `root`, never beyond the work area of its monitor, and moves every control
/// to its place in one step.
/// \param dpi  the DPI that the sizes in `root` are for
/// \throws system_error
void lay_out_dialog(HWND dialog, const box& root, UINT dpi);

/// Centres the window on its owner, or on the work area when there is none; always wholly inside the work area when it
/// fits there.
void centre_on_owner(HWND dialog, HWND owner) noexcept;

} // namespace girder::ui
