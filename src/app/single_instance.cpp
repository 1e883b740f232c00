#include "app/single_instance.h"

#include <windows.h>

namespace tidelink {

bool activate_running_copy() noexcept
{
    const HWND running = ::FindWindowExW(nullptr, nullptr, nullptr, main_window_title);
    if (!running)
        return false;
    if (::IsIconic(running))
        ::ShowWindowAsync(running, SW_RESTORE);
    ::SetForegroundWindow(running);
    return true;
}

} // namespace tidelink
