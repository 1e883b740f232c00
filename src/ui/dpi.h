#pragma once

#include "base/handles.h"

#include <windows.h>

namespace girder::ui {

/// The dialog font, "MS Shell Dlg" of 8 points, for a DPI; owned by the caller, who keeps it while a control uses it.
/// \throws system_error
unique_font create_dialog_font(UINT dpi);

/// Pixels for dialog units at one DPI and font. A horizontal unit is a quarter of the font's average character width, a
/// vertical one an eighth of its height (MapDialogRect's rule).
class dialog_units {
public:
    dialog_units(HFONT font, UINT dpi);

    int horizontal(int units) const noexcept { return ::MulDiv(units, width_, 4); }
    int vertical(int units) const noexcept { return ::MulDiv(units, height_, 8); }
    UINT dpi() const noexcept { return dpi_; }

private:
    int width_;
    int height_;
    UINT dpi_;
};

/// Keeps the system from resizing this dialog and its controls on a change of DPI: the program lays them out itself.
/// Does nothing where the system is too old to interfere (SetDialogDpiChangeBehavior, Windows 10 1703).
void disable_system_dpi_layout(HWND dialog);

} // namespace girder::ui
