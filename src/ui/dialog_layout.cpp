#include "ui/dialog_layout.h"

#include "base/win32_error.h"
#include "ui/dpi.h"

#include <commctrl.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace girder::ui {
namespace {

area area_of(const RECT& rectangle) noexcept
{
    return {.x = rectangle.left,
            .y = rectangle.top,
            .width = rectangle.right - rectangle.left,
            .height = rectangle.bottom - rectangle.top};
}

area area_of(HWND window) noexcept
{
    RECT rectangle{};
    ::GetWindowRect(window, &rectangle);
    return area_of(rectangle);
}

area work_area(HMONITOR monitor) noexcept
{
    MONITORINFO info{};
    info.cbSize = sizeof info;
    ::GetMonitorInfoW(monitor, &info);
    return area_of(info.rcWork);
}

area work_area_of(HWND window) noexcept
{
    return work_area(::MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST));
}

void move_window(HWND window, const area& place, UINT flags) noexcept
{
    ::SetWindowPos(window, nullptr, place.x, place.y, place.width, place.height, flags | SWP_NOZORDER | SWP_NOACTIVATE);
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

DWORD style_of(HWND window) noexcept
{
    return static_cast<DWORD>(::GetWindowLongPtrW(window, GWL_STYLE));
}

/// What a window's frame and caption add to its inside.
extent frame_of(HWND dialog, UINT dpi)
{
    RECT bounds{};
    const auto extended = static_cast<DWORD>(::GetWindowLongPtrW(dialog, GWL_EXSTYLE));
    if (!::AdjustWindowRectExForDpi(&bounds, style_of(dialog), FALSE, extended, dpi))
        throw_last_error("AdjustWindowRectExForDpi");
    return {.width = bounds.right - bounds.left, .height = bounds.bottom - bounds.top};
}

/// The outer size that shows all of `root`, at least `least` and at most the work area.
extent window_size(const box& root, const extent& frame, const extent& least, const area& work)
{
    const extent inside = natural_size(root, std::max(least.width, work.width) - frame.width);
    return {.width = std::min(std::max(inside.width + frame.width, least.width), work.width),
            .height = std::min(std::max(inside.height + frame.height, least.height), work.height)};
}

/// How far down the controls of a tree reach, with its margin below them.
int content_height(const box& root, const std::vector<placement>& placements)
{
    int bottom = 0;
    for (const placement& each : placements)
        bottom = std::max(bottom, each.place.y + each.place.height);
    return bottom + (root.control == 0 ? root.padding.bottom : 0);
}

/// \return the height that the controls need
int place_dialog(HWND dialog, const box& root, const extent& frame, const area& place)
{
    move_window(dialog, place, 0);
    const area inside{.x = 0, .y = 0, .width = place.width - frame.width, .height = place.height - frame.height};
    std::vector<placement> placements = arrange(root, inside);
    if (content_height(root, placements) > inside.height) {
        area beside_bar = inside;
        beside_bar.width -= ::GetSystemMetrics(SM_CXVSCROLL);
        placements = arrange(root, beside_bar);
    }
    place_controls(dialog, placements);
    return content_height(root, placements);
}

/// Brings a control into sight when it gets the keyboard.
LRESULT CALLBACK follow_focus(HWND control, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                              DWORD_PTR layout) noexcept
{
    if (message == WM_SETFOCUS)
        reinterpret_cast<dialog_layout*>(layout)->reveal(control);
    if (message == WM_NCDESTROY)
        ::RemoveWindowSubclass(control, follow_focus, id);
    return ::DefSubclassProc(control, message, wparam, lparam);
}

} // namespace

void set_dialog_font(HWND dialog, HFONT font) noexcept
{
    ::SendMessageW(dialog, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    for (HWND child = ::GetWindow(dialog, GW_CHILD); child; child = ::GetWindow(child, GW_HWNDNEXT))
        ::SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
}

int lay_out_dialog(HWND dialog, const box& root, UINT dpi)
{
    const area now = area_of(dialog);
    const area work = work_area_of(dialog);
    const extent frame = frame_of(dialog, dpi);
    const extent size = window_size(root, frame, {}, work);
    const bool stays_centred = (style_of(dialog) & DS_CENTER) != 0;
    const area same_corner{.x = now.x, .y = now.y, .width = size.width, .height = size.height};
    return place_dialog(dialog, root, frame,
                        stays_centred ? centred(size, now, work) : moved_inside(same_corner, work));
}

int lay_out_dialog(HWND dialog, const box& root, UINT dpi, const RECT& suggested)
{
    const area asked = area_of(suggested);
    const area work = work_area(::MonitorFromRect(&suggested, MONITOR_DEFAULTTONEAREST));
    const extent frame = frame_of(dialog, dpi);
    const extent size = window_size(root, frame, {.width = asked.width, .height = asked.height}, work);
    return place_dialog(dialog, root, frame,
                        moved_inside({.x = asked.x, .y = asked.y, .width = size.width, .height = size.height}, work));
}

void centre_on_owner(HWND dialog, HWND owner) noexcept
{
    const area work = work_area_of(owner ? owner : dialog);
    const area around = owner && !::IsIconic(owner) ? area_of(owner) : work;
    const area now = area_of(dialog);
    move_window(dialog, centred({.width = now.width, .height = now.height}, around, work), SWP_NOSIZE);
}

control_measure dialog_layout::use_dpi(HWND dialog, UINT dpi)
{
    unique_font font = create_dialog_font(dpi);
    set_dialog_font(dialog, font.get());
    // The controls have let go of the previous font.
    font_ = std::move(font);
    dpi_ = dpi;
    return {dialog, font_.get(), dpi};
}

void dialog_layout::set_content(HWND dialog, int height)
{
    RECT inside{};
    bar_.scroll_to(dialog, 0);
    ::GetClientRect(dialog, &inside);
    bar_.fit(dialog, height, inside.bottom);
    if (!bar_.needed())
        return;
    for (HWND child = ::GetWindow(dialog, GW_CHILD); child; child = ::GetWindow(child, GW_HWNDNEXT))
        ::SetWindowSubclass(child, follow_focus, 0x5C12, reinterpret_cast<DWORD_PTR>(this));
}

bool dialog_layout::on_message(HWND dialog, UINT message, WPARAM wparam)
{
    if (!bar_.needed() || (message != WM_VSCROLL && message != WM_MOUSEWHEEL))
        return false;
    const int line = dialog_units(font_.get(), dpi_).vertical(8);
    scroll(dialog,
           message == WM_VSCROLL ? bar_.on_scroll(dialog, LOWORD(wparam), line) : bar_.on_wheel(dialog, wparam, line));
    return true;
}

void dialog_layout::reveal(HWND control) noexcept
{
    const HWND dialog = ::GetParent(control);
    RECT place{};
    ::GetWindowRect(control, &place);
    ::MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    if (bar_.needed())
        scroll(dialog, bar_.reveal(dialog, place.top + bar_.position(), place.bottom + bar_.position()));
}

void dialog_layout::scroll(HWND dialog, int distance) noexcept
{
    if (distance != 0)
        ::ScrollWindowEx(dialog, 0, -distance, nullptr, nullptr, nullptr, nullptr,
                         SW_SCROLLCHILDREN | SW_INVALIDATE | SW_ERASE);
}

void dialog_layout::apply(HWND dialog, UINT dpi, const description& describe)
{
    const control_measure measure = use_dpi(dialog, dpi);
    set_content(dialog, lay_out_dialog(dialog, describe(measure), dpi));
}

void dialog_layout::apply(HWND dialog, UINT dpi, const RECT& suggested, const description& describe)
{
    const control_measure measure = use_dpi(dialog, dpi);
    set_content(dialog, lay_out_dialog(dialog, describe(measure), dpi, suggested));
}

} // namespace girder::ui
