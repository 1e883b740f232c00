#pragma once

#include "ui/controls.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <vector>

namespace support {

inline RECT place_of(HWND window)
{
    RECT place{};
    ::GetWindowRect(window, &place);
    return place;
}

inline SIZE size_of(HWND window)
{
    const RECT place = place_of(window);
    return {.cx = place.right - place.left, .cy = place.bottom - place.top};
}

inline RECT work_area()
{
    RECT work{};
    ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    return work;
}

inline bool is_inside(const RECT& inner, const RECT& outer)
{
    return inner.left >= outer.left && inner.right <= outer.right && inner.top >= outer.top &&
           inner.bottom <= outer.bottom;
}

/// The children in the order of the Tab key.
inline std::vector<HWND> children_of(HWND dialog)
{
    std::vector<HWND> all;
    for (HWND child = ::GetWindow(dialog, GW_CHILD); child; child = ::GetWindow(child, GW_HWNDNEXT))
        all.push_back(child);
    return all;
}

/// Every control lies inside the dialog, which needs no scroll bar, and none over another, but the group box `group`.
inline void expect_tidy(HWND dialog, int group = 0)
{
    EXPECT_EQ(::GetWindowLongPtrW(dialog, GWL_STYLE) & (WS_VSCROLL | WS_HSCROLL), 0);
    RECT inside{};
    ::GetClientRect(dialog, &inside);
    ::MapWindowPoints(dialog, nullptr, reinterpret_cast<POINT*>(&inside), 2);
    std::vector<HWND> seen;
    for (const HWND child : children_of(dialog)) {
        const RECT place = place_of(child);
        EXPECT_TRUE(is_inside(place, inside)) << ::GetDlgCtrlID(child);
        if (::GetDlgCtrlID(child) == group)
            continue;
        for (const HWND other : seen) {
            const RECT other_place = place_of(other);
            RECT shared{};
            EXPECT_FALSE(::IntersectRect(&shared, &place, &other_place))
                << ::GetDlgCtrlID(child) << " over " << ::GetDlgCtrlID(other);
        }
        seen.push_back(child);
    }
}

/// The room that the control's text takes in the font that the control has, drawn with these DT_ flags.
inline SIZE drawn_size(HWND control, UINT flags, int width = 0)
{
    const HDC screen = ::GetDC(control);
    const HGDIOBJ previous = ::SelectObject(screen, reinterpret_cast<HFONT>(::SendMessageW(control, WM_GETFONT, 0, 0)));
    RECT bounds{.left = 0, .top = 0, .right = width, .bottom = 0};
    const std::u16string text = girder::ui::window_text(control);
    ::DrawTextW(screen, reinterpret_cast<const wchar_t*>(text.c_str()), -1, &bounds, DT_CALCRECT | flags);
    ::SelectObject(screen, previous);
    ::ReleaseDC(control, screen);
    return {.cx = bounds.right, .cy = bounds.bottom};
}

} // namespace support
