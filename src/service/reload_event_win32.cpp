#include "base/handles.h"
#include "base/wide.h"
#include "base/win32_error.h"
#include "service/reload_event.h"

namespace tidelink {
namespace {

girder::unique_kernel_handle open_reload_event() noexcept
{
    return girder::unique_kernel_handle(::OpenEventW(EVENT_MODIFY_STATE, FALSE, girder::as_wide(reload_event_name)));
}

} // namespace

bool can_signal_reload() noexcept
{
    return static_cast<bool>(open_reload_event());
}

void signal_reload()
{
    girder::unique_kernel_handle event = open_reload_event();
    if (!event) {
        const DWORD code = ::GetLastError();
        if (code == ERROR_FILE_NOT_FOUND)
            return;
        girder::throw_win32(code, "OpenEventW");
    }
    if (!::SetEvent(event.get()))
        girder::throw_last_error("SetEvent");
    // Closed by hand: for this handle a failure is an error to show, not the end of the process.
    if (!::CloseHandle(event.release()))
        girder::throw_last_error("CloseHandle");
}

} // namespace tidelink
