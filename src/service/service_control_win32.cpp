#include "async/resume.h"
#include "base/handles.h"
#include "base/program.h"
#include "base/wide.h"
#include "base/win32_error.h"
#include "format/format.h"
#include "format/literals.h"
#include "service/reload_event.h"
#include "service/service_control.h"

#include <chrono>
#include <string>
#include <utility>

namespace tidelink {
namespace {

using namespace fmtkit::literals;
using namespace std::chrono_literals;
using girder::cancellation;
using girder::task;
using girder::throw_last_error;
using girder::unique_kernel_handle;
using girder::unique_service_handle;

constexpr auto polling_interval = 1s;

static_assert(service_state::stopped == SERVICE_STOPPED && service_state::start_pending == SERVICE_START_PENDING &&
              service_state::stop_pending == SERVICE_STOP_PENDING && service_state::running == SERVICE_RUNNING);

/// Empty when the manager cannot be opened; the last error tells why.
unique_service_handle open_manager() noexcept
{
    return unique_service_handle(::OpenSCManagerW(nullptr, SERVICES_ACTIVE_DATABASEW, SC_MANAGER_CONNECT));
}

/// Empty when the service cannot be opened; the last error tells why.
unique_service_handle open_service(const unique_service_handle& manager, DWORD access) noexcept
{
    return unique_service_handle(::OpenServiceW(manager.get(), girder::as_wide(service_name), access));
}

/// A service of which further calls can be made; the manager need not stay open for them.
unique_service_handle open_service(DWORD access)
{
    const unique_service_handle manager = open_manager();
    if (!manager)
        throw_last_error("OpenSCManagerW");
    unique_service_handle service = open_service(manager, access);
    if (!service)
        throw_last_error("OpenServiceW");
    return service;
}

/// The service manager's answer alone.
service_finding ask_service_manager() noexcept
{
    const unique_service_handle manager = open_manager();
    if (!manager)
        return {.lookup = service_lookup::failed};
    const unique_service_handle service = open_service(manager, SERVICE_QUERY_STATUS);
    if (!service)
        return {.lookup = ::GetLastError() == ERROR_SERVICE_DOES_NOT_EXIST ? service_lookup::no_such_name
                                                                           : service_lookup::failed};
    SERVICE_STATUS status{};
    if (!::QueryServiceStatus(service.get(), &status))
        return {.lookup = service_lookup::failed};
    return {.lookup = service_lookup::found, .state = status.dwCurrentState};
}

unique_kernel_handle start_process(std::u16string command_line)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!::CreateProcessW(nullptr, girder::as_wide(command_line.data()), nullptr, nullptr, FALSE, NORMAL_PRIORITY_CLASS,
                          nullptr, nullptr, &startup, &started))
        throw_last_error("CreateProcessW");
    const unique_kernel_handle thread{started.hThread};
    return unique_kernel_handle{started.hProcess};
}

} // namespace

service_finding look_up_service() noexcept
{
    service_finding finding = ask_service_manager();
    finding.server_listens = may_run_standalone(finding) && can_signal_reload();
    return finding;
}

// A parameter, unlike a reference, lives as long as its coroutine.
// NOLINTBEGIN(performance-unnecessary-value-param)

task<> install_service(cancellation cancelled)
{
    const unique_kernel_handle process =
        start_process(fmtkit::format(u"\"{}tl_server.exe\" -install-service"_fmt, girder::program_folder()));
    if (::WaitForSingleObject(process.get(), 0) != WAIT_OBJECT_0)
        co_await girder::resume_on_signal(process.get(), cancelled);
    DWORD exit_code = 0;
    if (!::GetExitCodeProcess(process.get(), &exit_code))
        throw_last_error("GetExitCodeProcess");
    girder::throw_if_failed(static_cast<HRESULT>(exit_code), "tl_server.exe -install-service");
}

task<> start_service(cancellation cancelled)
{
    const unique_service_handle service = open_service(SERVICE_QUERY_STATUS | SERVICE_START);
    if (!::StartServiceW(service.get(), 0, nullptr))
        throw_last_error("StartServiceW");
    SERVICE_STATUS status{};
    while (::QueryServiceStatus(service.get(), &status) && status.dwCurrentState == SERVICE_START_PENDING)
        co_await girder::resume_after(polling_interval, cancelled);
}

task<> stop_service(cancellation cancelled)
{
    const unique_service_handle service = open_service(SERVICE_QUERY_STATUS | SERVICE_STOP);
    SERVICE_STATUS status{};
    if (!::ControlService(service.get(), SERVICE_CONTROL_STOP, &status))
        throw_last_error("ControlService");
    for (;;) {
        if (!::QueryServiceStatus(service.get(), &status))
            throw_last_error("QueryServiceStatus");
        if (status.dwCurrentState != SERVICE_STOP_PENDING)
            co_return;
        co_await girder::resume_after(polling_interval, cancelled);
    }
}

// NOLINTEND(performance-unnecessary-value-param)

} // namespace tidelink
