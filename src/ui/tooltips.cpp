#include "ui/tooltips.h"

#include "base/wide.h"
#include "base/win32_error.h"

#include <commctrl.h>

namespace girder::ui {

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

} // namespace girder::ui
