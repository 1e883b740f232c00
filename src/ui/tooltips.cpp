#include "ui/tooltips.h"

#include "base/wide.h"
#include "base/win32_error.h"

#include <commctrl.h>

namespace girder::ui {
namespace {

LRESULT CALLBACK select_all_filter(HWND edit, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                   DWORD_PTR) noexcept
{
    constexpr WPARAM control_a = 1;
    if (message == WM_CHAR && wparam == control_a) {
        ::SendMessageW(edit, EM_SETSEL, 0, -1);
        return 0;
    }
    if (message == WM_NCDESTROY)
        ::RemoveWindowSubclass(edit, select_all_filter, id);
    return ::DefSubclassProc(edit, message, wparam, lparam);
}

} // namespace

void tooltips::set(HWND dialog, HWND control, std::u16string_view text)
{
    if (!window_)
        window_ = ::CreateWindowExW(0, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, CW_USEDEFAULT,
                                    CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, dialog, nullptr,
                                    ::GetModuleHandleW(nullptr), nullptr);
    if (!window_)
        throw_last_error("CreateWindowExW");
    std::u16string terminated(text);
    TTTOOLINFOW tool{};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_SUBCLASS | TTF_IDISHWND;
    tool.hwnd = dialog;
    tool.uId = reinterpret_cast<UINT_PTR>(control);
    tool.lpszText = as_wide(terminated.data());
    ::SendMessageW(window_, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    ::SendMessageW(window_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void select_all_by_keyboard(HWND edit) noexcept
{
    ::SetWindowSubclass(edit, select_all_filter, 0, 0);
}

} // namespace girder::ui
