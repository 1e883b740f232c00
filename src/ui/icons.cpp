#include "ui/icons.h"

#include <utility>

namespace girder::ui {

unique_icon load_icon(int resource_id, int side) noexcept
{
    return unique_icon(static_cast<HICON>(::LoadImageW(::GetModuleHandleW(nullptr), MAKEINTRESOURCEW(resource_id),
                                                       IMAGE_ICON, side, side, LR_DEFAULTCOLOR)));
}

void window_icons::show(HWND window, int resource_id, UINT dpi) noexcept
{
    unique_icon small = load_icon(resource_id, ::GetSystemMetricsForDpi(SM_CXSMICON, dpi));
    unique_icon big = load_icon(resource_id, ::GetSystemMetricsForDpi(SM_CXICON, dpi));
    ::SendMessageW(window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(small.get()));
    ::SendMessageW(window, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(big.get()));
    // The window has let go of the previous ones.
    small_ = std::move(small);
    big_ = std::move(big);
}

} // namespace girder::ui
