#pragma once

#include <windows.h>

namespace demo_server {

/// How the server shall behave: what the file tl_server.ini beside the executable says when it is read; without the
/// file, without delay and without fault. Numbers may be hexadecimal with 0x before them.
///
///     [install]
///     delay_ms = 0        before the service is registered
///     exit_code = 0       of -install-service; a failure code (HRESULT) registers nothing
///     [service]
///     connect_ms = 0      before the process tells the service manager that it is there, which the start waits for
///     start_ms = 0        start pending
///     start_error = 0     stops with this code in place of running
///     stop_ms = 0         stop pending
struct script {
    DWORD install_delay_ms = 0;
    HRESULT install_exit_code = S_OK;
    DWORD connect_ms = 0;
    DWORD start_ms = 0;
    DWORD start_error = NO_ERROR;
    DWORD stop_ms = 0;
};

/// \throws girder::system_error
script read_script();

} // namespace demo_server
