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

/// Lets Ctrl+A select the whole text of a one-line edit, which not every system does by itself.
void select_all_by_keyboard(HWND edit) noexcept;

} // namespace girder::ui
