#include "install.h"

#include "base/handles.h"
#include "base/program.h"
#include "base/wide.h"
#include "base/win32_error.h"

#include <windows.h>

namespace demo_server {
void install_service()
{
    const girder::unique_service_handle manager(
        ::OpenSCManagerW(nullptr, SERVICES_ACTIVE_DATABASEW, SC_MANAGER_CREATE_SERVICE));
    if (!manager)
        girder::throw_last_error("OpenSCManagerW");
    const std::u16string command_line = u'"' + girder::program_path() + u'"';
    const girder::unique_service_handle service(
        ::CreateServiceW(manager.get(), service_name, L"Zelmark Tidelink Port Server", SERVICE_QUERY_STATUS,
                         SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL,
                         girder::as_wide(command_line), nullptr, nullptr, nullptr, nullptr, nullptr));
    if (!service && ::GetLastError() != ERROR_SERVICE_EXISTS)
        girder::throw_last_error("CreateServiceW");
}

} // namespace demo_server
