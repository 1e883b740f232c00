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

extent scroll_bar_sizes(UINT dpi) noexcept
{
    return {.width = ::GetSystemMetricsForDpi(SM_CXVSCROLL, dpi),
            .height = ::GetSystemMetricsForDpi(SM_CYHSCROLL, dpi)};
}

/// The outer size that shows all of `root`, at least `least` and at most the work area.
extent window_size(const box& root, const extent& frame, const extent& least, const area& work, const extent& bars)
{
    const extent room{.width = std::max(least.width, work.width) - frame.width,
                      .height = std::max(least.height, work.height) - frame.height};
    const extent natural = natural_size(root, room.width);
    const scrolled_fit fit = fit_scrolled(root, {.width = natural.width, .height = room.height}, bars);
    const int beside_bar = fit.page.width < natural.width ? bars.width : 0;
    const int above_bar = natural.width > room.width ? bars.height : 0;
    return {.width = std::min(std::max(natural.width + beside_bar + frame.width, least.width), work.width),
            .height = std::min(std::max(natural.height + above_bar + frame.height, least.height), work.height)};
}

void set_dialog_font(HWND dialog, HFONT font) noexcept
{
    ::SendMessageW(dialog, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    for (HWND child = ::GetWindow(dialog, GW_CHILD); child; child = ::GetWindow(child, GW_HWNDNEXT))
        ::SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
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

void dialog_layout::place(HWND dialog, const box& root, const area& place, const extent& frame)
{
    move_window(dialog, place, 0);
    across_.scroll_to(dialog, 0);
    down_.scroll_to(dialog, 0);
    const scrolled_fit fit = fit_scrolled(
        root, {.width = place.width - frame.width, .height = place.height - frame.height}, scroll_bar_sizes(dpi_));
    place_controls(dialog, arrange(root, {.x = 0, .y = 0, .width = fit.page.width, .height = fit.page.height}));
    across_.fit(dialog, fit.content.width, fit.page.width);
    down_.fit(dialog, fit.content.height, fit.page.height);
    if (!across_.needed() && !down_.needed())
        return;
    for (HWND child = ::GetWindow(dialog, GW_CHILD); child; child = ::GetWindow(child, GW_HWNDNEXT))
        ::SetWindowSubclass(child, follow_focus, 0x5C12, reinterpret_cast<DWORD_PTR>(this));
    if (const HWND focused = ::GetFocus(); ::IsChild(dialog, focused))
        reveal(focused);
}

bool dialog_layout::on_message(HWND dialog, UINT message, WPARAM wparam)
{
    const auto line = [this] { return dialog_units(font_.get(), dpi_).vertical(8); };
    if (message == WM_HSCROLL && across_.needed())
        scroll(dialog, across_.on_scroll(dialog, LOWORD(wparam), line()), 0);
    else if (message == WM_VSCROLL && down_.needed())
        scroll(dialog, 0, down_.on_scroll(dialog, LOWORD(wparam), line()));
    else if (message == WM_MOUSEWHEEL && down_.needed())
        scroll(dialog, 0, down_.on_wheel(dialog, wparam, line()));
    else
        return false;
    return true;
}

void dialog_layout::reveal(HWND control) noexcept
{
    const HWND dialog = ::GetParent(control);
    RECT place{};
    ::GetWindowRect(control, &place);
    ::MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    ::OffsetRect(&place, across_.position(), down_.position());
    const int across = across_.needed() ? across_.reveal(dialog, place.left, place.right) : 0;
    const int down = down_.needed() ? down_.reveal(dialog, place.top, place.bottom) : 0;
    scroll(dialog, across, down);
}

void dialog_layout::scroll(HWND dialog, int across, int down) noexcept
{
    if (across != 0 || down != 0)
        ::ScrollWindowEx(dialog, -across, -down, nullptr, nullptr, nullptr, nullptr,
                         SW_SCROLLCHILDREN | SW_INVALIDATE | SW_ERASE);
}

void dialog_layout::apply(HWND dialog, UINT dpi, const description& describe)
{
    const control_measure measure = use_dpi(dialog, dpi);
    const box root = describe(measure);
    const area now = area_of(dialog);
    const area work = work_area_of(dialog);
    const extent frame = frame_of(dialog, dpi);
    const extent size = window_size(root, frame, {}, work, scroll_bar_sizes(dpi));
    const bool stays_centred = (style_of(dialog) & DS_CENTER) != 0;
    const area same_corner{.x = now.x, .y = now.y, .width = size.width, .height = size.height};
    place(dialog, root, stays_centred ? centred(size, now, work) : moved_inside(same_corner, work), frame);
}

void dialog_layout::apply(HWND dialog, UINT dpi, const RECT& suggested, const description& describe)
{
    const control_measure measure = use_dpi(dialog, dpi);
    const box root = describe(measure);
    const area asked = area_of(suggested);
    const area work = work_area(::MonitorFromRect(&suggested, MONITOR_DEFAULTTONEAREST));
    const extent frame = frame_of(dialog, dpi);
    const extent least{.width = asked.width, .height = asked.height};
    const extent size = window_size(root, frame, least, work, scroll_bar_sizes(dpi));
    place(dialog, root, moved_inside({.x = asked.x, .y = asked.y, .width = size.width, .height = size.height}, work),
          frame);
}

} // namespace girder::ui
