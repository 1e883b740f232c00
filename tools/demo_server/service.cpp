#include "service.h"

#include "base/handles.h"
#include "base/win32_error.h"
#include "install.h"
#include "server.h"

#include <exception>
#include <string>

namespace demo_server {
namespace {

/// The service manager calls the service with no context.
const script* followed_script = nullptr;

struct running_service {
    SERVICE_STATUS_HANDLE status = nullptr;
    girder::unique_kernel_handle stop;
};

void report(const running_service& service, DWORD state, DWORD exit_code = NO_ERROR) noexcept
{
    SERVICE_STATUS status{};
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwCurrentState = state;
    status.dwControlsAccepted = state == SERVICE_RUNNING ? SERVICE_ACCEPT_STOP | SERVICE_ACCEPT_SHUTDOWN : 0;
    status.dwWin32ExitCode = exit_code;
    ::SetServiceStatus(service.status, &status);
}

DWORD WINAPI on_control(DWORD control, DWORD, void*, void* context)
{
    const auto& service = *static_cast<const running_service*>(context);
    switch (control) {
    case SERVICE_CONTROL_STOP:
    case SERVICE_CONTROL_SHUTDOWN:
        report(service, SERVICE_STOP_PENDING);
        ::SetEvent(service.stop.get());
        return NO_ERROR;
    case SERVICE_CONTROL_INTERROGATE:
        return NO_ERROR;
    default:
        return ERROR_CALL_NOT_IMPLEMENTED;
    }
}

/// \return the code that the service manager is told
DWORD serve(const running_service& service) noexcept
try {
    ::Sleep(followed_script->start_ms);
    if (followed_script->start_error != NO_ERROR)
        return followed_script->start_error;
    {
        server listening;
        report(service, SERVICE_RUNNING);
        listening.serve_until(service.stop.get());
    }
    ::Sleep(followed_script->stop_ms);
    return NO_ERROR;
} catch (const girder::system_error& error) {
    return error.code();
} catch (const std::exception&) {
    return ERROR_EXCEPTION_IN_SERVICE;
}

void WINAPI service_main(DWORD, wchar_t**)
{
    running_service service;
    service.stop.reset(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
    service.status = ::RegisterServiceCtrlHandlerExW(service_name, on_control, &service);
    if (!service.status)
        return;
    report(service, SERVICE_START_PENDING);
    report(service, SERVICE_STOPPED, service.stop ? serve(service) : ERROR_NOT_ENOUGH_MEMORY);
}

} // namespace

bool run_as_service(const script& script)
{
    ::Sleep(script.connect_ms);
    followed_script = &script;
    std::wstring name = service_name;
    const SERVICE_TABLE_ENTRYW services[] = {{.lpServiceName = name.data(), .lpServiceProc = service_main}, {}};
    if (::StartServiceCtrlDispatcherW(services))
        return true;
    if (::GetLastError() != ERROR_FAILED_SERVICE_CONTROLLER_CONNECT)
        girder::throw_last_error("StartServiceCtrlDispatcherW");
    return false;
}

} // namespace demo_server
