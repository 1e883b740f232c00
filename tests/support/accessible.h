#pragma once

#include "base/unique_com.h"
#include "base/wide.h"
#include "ui/controls.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <oleacc.h>

#include <string>

namespace support {

/// A list or combo box has no text of its own that could be its name.
inline bool is_list(HWND control)
{
    wchar_t kind[16]{};
    ::GetClassNameW(control, kind, 16);
    return ::lstrcmpiW(kind, L"SysListView32") == 0 || ::lstrcmpiW(kind, L"ComboBox") == 0;
}

/// The name by which a screen reader calls a control. For a list this is not asked of the system, because not every one
/// looks for the label, but found by the documented rule: a static control right before it, visible or not.
inline std::u16string accessible_name(HWND control)
{
    if (is_list(control)) {
        const HWND before = ::GetWindow(control, GW_HWNDPREV);
        wchar_t kind[16]{};
        ::GetClassNameW(before, kind, 16);
        return ::lstrcmpiW(kind, L"Static") == 0 ? girder::ui::window_text(before) : std::u16string();
    }
    girder::unique_com<IAccessible> object;
    EXPECT_EQ(::AccessibleObjectFromWindow(control, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                           reinterpret_cast<void**>(object.put())),
              S_OK);
    VARIANT self{};
    self.vt = VT_I4;
    BSTR name = nullptr;
    if (!object || object.get()->get_accName(self, &name) != S_OK || !name)
        return {};
    const std::u16string given(girder::as_utf16(name), ::SysStringLen(name));
    ::SysFreeString(name);
    return given;
}

/// Every control that takes the keyboard has a name.
inline void expect_named_controls(HWND dialog)
{
    for (HWND child = ::GetWindow(dialog, GW_CHILD); child; child = ::GetWindow(child, GW_HWNDNEXT))
        if ((::GetWindowLongPtrW(child, GWL_STYLE) & WS_TABSTOP) != 0)
            EXPECT_FALSE(accessible_name(child).empty()) << ::GetDlgCtrlID(child);
}

} // namespace support
