#pragma once

#include "async/ui_thread.h"
#include "base/handles.h"

#include <windows.h>

namespace tidelink {

/// While it lives, callables posted to the user-interface thread run whenever a message is taken from that thread's
/// queue: in the program's own loop and inside every modal loop. One at a time, created and destroyed on that thread.
class message_hook {
public:
    /// \param thread  outlives the hook
    /// \throws girder::system_error
    explicit message_hook(girder::ui_thread& thread);
    message_hook(const message_hook&) = delete;
    message_hook& operator=(const message_hook&) = delete;
    ~message_hook();

private:
    girder::unique_hook hook_;
};

} // namespace tidelink
