#pragma once

#include "base/unique_handle.h"

#include <windows.h>

namespace girder::ui {

struct icon_traits {
    using raw_type = HICON;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type icon) noexcept { ::DestroyIcon(icon); }
};
using unique_icon = unique_handle<icon_traits>;

/// An icon of the program's resources in the size next to `side` pixels; empty where there is none.
unique_icon load_icon(int resource_id, int side) noexcept;

/// The icons of one window, in the title bar and in the task switcher; they belong to this object.
class window_icons {
public:
    /// Shows the icon of the program's resources in the sizes that the system uses at a DPI.
    void show(HWND window, int resource_id, UINT dpi) noexcept;

private:
    unique_icon small_;
    unique_icon big_;
};

} // namespace girder::ui
