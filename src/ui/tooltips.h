#pragma once

#include <windows.h>

#include <string_view>

namespace girder::ui {

/// The tooltips of one dialog, shown when the mouse rests on a control. Their window goes with the dialog's.
class tooltips {
public:
    /// Gives a control its tooltip, in the place of an earlier one.
    /// \throws system_error
    void set(HWND dialog, HWND control, std::u16string_view text);

private:
    HWND window_ = nullptr;
};

} // namespace girder::ui
