#pragma once

namespace demo_server {

/// The name under which the service manager knows the port server.
inline constexpr wchar_t service_name[] = L"zelpssrv";

/// Registers this executable as a service that is started on demand; nothing happens when the service exists.
/// \throws girder::system_error with the service manager's code
void install_service();

} // namespace demo_server
