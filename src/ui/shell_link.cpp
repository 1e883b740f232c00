#include "ui/shell_link.h"

#include "base/system_library.h"
#include "base/wide.h"
#include "base/win32_error.h"

#include <shellapi.h>

namespace girder::ui {

void open_by_shell(HWND owner, const std::u16string& address)
{
    constexpr INT_PTR greatest_error = 32;
    const system_library shell(u"shell32.dll");
    const auto execute = shell.function<decltype(::ShellExecuteW)>("ShellExecuteW");
    const HINSTANCE result = execute(owner, L"open", as_wide(address), nullptr, nullptr, SW_SHOWNORMAL);
    if (const auto code = reinterpret_cast<INT_PTR>(result); code <= greatest_error)
        throw_win32(static_cast<DWORD>(code), "ShellExecuteW");
}

} // namespace girder::ui
