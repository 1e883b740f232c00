#pragma once

#include "async/cancellation.h"
#include "async/task.h"
#include "async/ui_thread.h"
#include "ui/dialog.h"

#include <functional>

namespace tidelink {

/// The server's service in the main dialog: the status field (1001), Start or Install (1002) and Stop (1003).
/// User-interface thread only.
class service_commands {
public:
    /// Both outlive the object.
    service_commands(girder::ui_thread& thread, girder::ui::dialog& dialog) noexcept : thread_(thread), dialog_(dialog)
    {}

    /// Asks for the service's state and shows it. A failure shows as a state, never as a message.
    /// \throws what a missing text throws
    void RefreshServiceStatus();
    /// The same after the window was activated: others may have changed the state. Nothing while an operation is
    /// pending, which shows the state at its end.
    void refresh_unless_pending();

    // The commands return when the operation has ended, was cancelled or the window is gone, with the state shown anew.
    // They do nothing while an operation is pending.

    /// Starts the service; where Start stands for Install, installs it first.
    /// \throws girder::system_error
    void StartServerService();
    /// \throws girder::system_error
    void StopServerService();

private:
    using operation = girder::task<> (*)(girder::cancellation);

    void perform(const std::function<void()>& steps);
    void run(operation start);

    girder::ui_thread& thread_;
    girder::ui::dialog& dialog_;
    bool install_mode_ = false; ///< Start stands for Install
    bool pending_ = false;
};

} // namespace tidelink
