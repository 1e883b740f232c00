#pragma once

#include <windows.h>

namespace tidelink {

/// The two window messages that the program registers by name, registered at start-up.
struct registered_messages {
    UINT ui_return;       ///< ZELWM_UIRETURN: a thread message that carries a posted callable in wParam
    UINT process_command; ///< ZEL_WM_PROCESSCOMMAND: handled like WM_COMMAND, with 1 as its result when handled
};

/// The numbers; the same for the life of the process.
const registered_messages& messages() noexcept;

} // namespace tidelink
