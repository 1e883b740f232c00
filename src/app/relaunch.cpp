#include "app/relaunch.h"

#include "base/handles.h"

#include <windows.h>

namespace tidelink {

void relaunch() noexcept
{
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!::CreateProcessW(nullptr, ::GetCommandLineW(), nullptr, nullptr, FALSE, NORMAL_PRIORITY_CLASS, nullptr,
                          nullptr, &startup, &started))
        return;
    const girder::unique_kernel_handle thread{started.hThread};
    const girder::unique_kernel_handle process{started.hProcess};
}

} // namespace tidelink
