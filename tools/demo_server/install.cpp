#include "install.h"

#include "base/program.h"
#include "base/unique_handle.h"
#include "base/wide.h"
#include "base/win32_error.h"

#include <windows.h>

namespace demo_server {
namespace {

struct service_traits {
    using raw_type = SC_HANDLE;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type handle) noexcept { ::CloseServiceHandle(handle); }
};
using unique_service = girder::unique_handle<service_traits>;

} // namespace

void install_service()
{
    const unique_service manager(::OpenSCManagerW(nullptr, SERVICES_ACTIVE_DATABASEW, SC_MANAGER_CREATE_SERVICE));
    if (!manager)
        girder::throw_last_error("OpenSCManagerW");
    const std::u16string command_line = u'"' + girder::program_path() + u'"';
    const unique_service service(::CreateServiceW(manager.get(), service_name, L"Zelmark Tidelink Port Server",
                                                  SERVICE_QUERY_STATUS, SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START,
                                                  SERVICE_ERROR_NORMAL, girder::as_wide(command_line), nullptr, nullptr,
                                                  nullptr, nullptr, nullptr));
    if (!service && ::GetLastError() != ERROR_SERVICE_EXISTS)
        girder::throw_last_error("CreateServiceW");
}

} // namespace demo_server
