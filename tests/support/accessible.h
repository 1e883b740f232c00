#pragma once

#include "base/unique_com.h"
#include "base/wide.h"
#include "ui/controls.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <oleacc.h>

#include <string>

namespace support {

inline std::wstring class_of(HWND control)
{
    wchar_t kind[32]{};
    ::GetClassNameW(control, kind, 32);
    return kind;
}

/// A list or combo box has no text of its own that could be its name.
inline bool is_list(HWND control)
{
    return class_of(control) == L"SysListView32" || class_of(control) == L"ComboBox";
}

inline girder::unique_com<IAccessible> accessible_of(HWND control)
{
    girder::unique_com<IAccessible> object;
    EXPECT_EQ(::AccessibleObjectFromWindow(control, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                           reinterpret_cast<void**>(object.put())),
              S_OK);
    return object;
}

inline VARIANT accessible_child(long number = CHILDID_SELF)
{
    VARIANT made{};
    made.vt = VT_I4;
    made.lVal = number;
    return made;
}

/// The name by which a screen reader calls a control. Not every system looks for the label of a list or an edit: theirs
/// is found by the documented rule, a static control right before it, visible or not.
inline std::u16string accessible_name(HWND control)
{
    BSTR name = nullptr;
    const girder::unique_com<IAccessible> object = accessible_of(control);
    if (object && !is_list(control) && object.get()->get_accName(accessible_child(), &name) == S_OK && name) {
        const std::u16string given(girder::as_utf16(name), ::SysStringLen(name));
        ::SysFreeString(name);
        return given;
    }
    const HWND before = ::GetWindow(control, GW_HWNDPREV);
    return class_of(before) == L"Static" ? girder::ui::window_text(before) : std::u16string();
}

/// What the control is for a screen reader: by the system's documented rule for its own classes, because not every
/// system tells it for each of them; 0 for others.
inline long role_by_class(HWND control)
{
    const std::wstring kind = class_of(control);
    const LONG_PTR type = ::GetWindowLongPtrW(control, GWL_STYLE) & BS_TYPEMASK;
    if (kind == L"Button" && type == BS_AUTORADIOBUTTON)
        return ROLE_SYSTEM_RADIOBUTTON;
    if (kind == L"Button")
        return type == BS_AUTOCHECKBOX ? ROLE_SYSTEM_CHECKBUTTON : ROLE_SYSTEM_PUSHBUTTON;
    if (kind == L"Edit")
        return ROLE_SYSTEM_TEXT;
    if (kind == L"ComboBox")
        return ROLE_SYSTEM_COMBOBOX;
    return kind == L"SysListView32" ? ROLE_SYSTEM_LIST : 0;
}

inline long accessible_role(HWND control)
{
    VARIANT role{};
    EXPECT_EQ(accessible_of(control).get()->get_accRole(accessible_child(), &role), S_OK);
    return role.lVal == ROLE_SYSTEM_CLIENT ? role_by_class(control) : role.lVal;
}

inline bool takes_keyboard(HWND control)
{
    const LONG_PTR style = ::GetWindowLongPtrW(control, GWL_STYLE);
    const bool is_radio_button = class_of(control) == L"Button" && (style & BS_TYPEMASK) == BS_AUTORADIOBUTTON;
    return (style & WS_TABSTOP) != 0 || is_radio_button;
}

} // namespace support
