#pragma once

#include "script.h"

namespace demo_server {

/// Serves under the service manager until it asks for the end.
/// \return false when this process was not started by the service manager
/// \throws girder::system_error
bool run_as_service(const script& script);

} // namespace demo_server
