#include "ui/dialog_layout.h"

#include "base/win32_error.h"

#include <algorithm>
#include <cwchar>

namespace girder::ui {
namespace {

RECT work_area_of(HWND window) noexcept
{
    MONITORINFO info{};
    info.cbSize = sizeof info;
    ::GetMonitorInfoW(::MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &info);
    return info.rcWork;
}

constexpr int width_of(const RECT& rectangle)
{
    return rectangle.right - rectangle.left;
}
constexpr int height_of(const RECT& rectangle)
{
    return rectangle.bottom - rectangle.top;
}

/// Moves a stretch of `length` from `start` into [low, high); its start wins when it does not fit.
int moved_inside(int start, int length, int low, int high)
{
    return std::max(low, std::min(start, high - length));
}

bool is_drop_down(HWND control)
{
    wchar_t name[16]{};
    ::GetClassNameW(control, name, static_cast<int>(std::size(name)));
    return ::lstrcmpiW(name, L"ComboBox") == 0;
}

/// The height to set: a drop-down list's window includes the list that it opens.
int window_height(HWND control, const area& place)
{
    constexpr int entries_shown = 10;
    if (!is_drop_down(control))
        return place.height;
    return place.height + entries_shown * static_cast<int>(::SendMessageW(control, CB_GETITEMHEIGHT, 0, 0));
}

void place_controls(HWND dialog, const std::vector<placement>& placements)
{
    HDWP batch = ::BeginDeferWindowPos(static_cast<int>(placements.size()));
    for (const placement& each : placements) {
        const HWND control = ::GetDlgItem(dialog, each.control);
        if (batch && control)
            batch = ::DeferWindowPos(batch, control, nullptr, each.place.x, each.place.y, each.place.width,
                                     window_height(control, each.place), SWP_NOZORDER | SWP_NOACTIVATE);
    }
    if (!batch || !::EndDeferWindowPos(batch))
        throw_last_error("DeferWindowPos");
    ::InvalidateRect(dialog, nullptr, TRUE);
}

/// The size of the whole window whose inside has the given size.
SIZE outer_size(HWND dialog, const extent& inside, UINT dpi)
{
    RECT bounds{.left = 0, .top = 0, .right = inside.width, .bottom = inside.height};
    const auto style = static_cast<DWORD>(::GetWindowLongPtrW(dialog, GWL_STYLE));
    const auto extended = static_cast<DWORD>(::GetWindowLongPtrW(dialog, GWL_EXSTYLE));
    if (!::AdjustWindowRectExForDpi(&bounds, style, FALSE, extended, dpi))
        throw_last_error("AdjustWindowRectExForDpi");
    return {.cx = width_of(bounds), .cy = height_of(bounds)};
}

} // namespace

void set_dialog_font(HWND dialog, HFONT font) noexcept
{
    ::SendMessageW(dialog, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    for (HWND child = ::GetWindow(dialog, GW_CHILD); child; child = ::GetWindow(child, GW_HWNDNEXT))
        ::SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
}

void lay_out_dialog(HWND dialog, const box& root, UINT dpi)
{
    const extent natural = natural_size(root);
    const SIZE outer = outer_size(dialog, natural, dpi);
    const RECT work = work_area_of(dialog);
    RECT now{};
    ::GetWindowRect(dialog, &now);
    const int width = std::min<int>(outer.cx, width_of(work));
    const int height = std::min<int>(outer.cy, height_of(work));
    ::SetWindowPos(dialog, nullptr, moved_inside(now.left, width, work.left, work.right),
                   moved_inside(now.top, height, work.top, work.bottom), width, height, SWP_NOZORDER | SWP_NOACTIVATE);
    place_controls(dialog, arrange(root, {.x = 0, .y = 0, .width = natural.width, .height = natural.height}));
}

void centre_on_owner(HWND dialog, HWND owner) noexcept
{
    const RECT work = work_area_of(owner ? owner : dialog);
    RECT around = work;
    if (owner && !::IsIconic(owner))
        ::GetWindowRect(owner, &around);
    RECT own{};
    ::GetWindowRect(dialog, &own);
    const int x = around.left + (width_of(around) - width_of(own)) / 2;
    const int y = around.top + (height_of(around) - height_of(own)) / 2;
    ::SetWindowPos(dialog, nullptr, moved_inside(x, width_of(own), work.left, work.right),
                   moved_inside(y, height_of(own), work.top, work.bottom), 0, 0,
                   SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace girder::ui
