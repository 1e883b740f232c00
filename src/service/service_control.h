#pragma once

#include "async/cancellation.h"
#include "async/task.h"
#include "service/service_status.h"

// The server's service in the service control manager. Every function opens what it needs and closes it again. Windows
// only.

namespace tidelink {

/// The name under which the service manager knows the server.
inline constexpr const char16_t* service_name = u"zelpssrv";

/// Asks the service manager about the service and, where that leaves it open, whether a server listens.
service_finding look_up_service() noexcept;

// The operations below make calls that may take long, so they belong on a pool thread: where they wait, they resume on
// one. A cancellation ends their waiting at once; what the service does then is not undone.

/// Runs "tl_server.exe -install-service" from this program's folder and waits for its end; cancelled, it leaves the
/// process to end by itself.
/// \throws girder::system_error when the process cannot be run, or with its exit code, an HRESULT, when that is a
///         failure; girder::operation_cancelled
girder::task<> install_service(girder::cancellation cancelled);

/// Starts the service and waits, without a time limit, until it is no longer about to start. A status that cannot be
/// read ends the wait.
/// \throws girder::system_error when the service cannot be opened or started; girder::operation_cancelled
girder::task<> start_service(girder::cancellation cancelled);

/// Stops the service and waits, without a time limit, until it is no longer about to stop.
/// \throws girder::system_error when the service cannot be opened or stopped, or its status cannot be read;
///         girder::operation_cancelled
girder::task<> stop_service(girder::cancellation cancelled);

} // namespace tidelink
