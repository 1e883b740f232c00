#pragma once

#include "base/handles.h"

namespace demo_server {

/// What the server does while it runs: it reads the settings, and reads them again whenever the utility asks for it.
/// Each time it logs what it would share.
class server {
public:
    /// Creates the reload event, which tells everybody that the server is running.
    /// \throws girder::system_error; with ERROR_ALREADY_EXISTS when another server is running
    server();

    /// \param stop  the event that ends it
    /// \throws girder::system_error
    void serve_until(HANDLE stop);

private:
    girder::unique_kernel_handle reload_;
};

} // namespace demo_server
