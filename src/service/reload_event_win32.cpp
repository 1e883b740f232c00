#include "base/handles.h"
#include "base/wide.h"
#include "base/win32_error.h"
#include "service/reload_event.h"

namespace tidelink {

void signal_reload()
{
    girder::unique_kernel_handle event{::OpenEventW(EVENT_MODIFY_STATE, FALSE, girder::as_wide(reload_event_name))};
    if (!event)
        return;
    if (!::SetEvent(event.get()))
        girder::throw_last_error("SetEvent");
    // Closed by hand: for this handle a failure is an error to show, not the end of the process.
    if (!::CloseHandle(event.release()))
        girder::throw_last_error("CloseHandle");
}

} // namespace tidelink
