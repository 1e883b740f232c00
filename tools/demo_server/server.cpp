#include "server.h"

#include "base/wide.h"
#include "base/win32_error.h"
#include "format/format.h"
#include "format/literals.h"
#include "log.h"
#include "service/reload_event.h"
#include "settings/settings_store.h"

#include <sddl.h>

#include <exception>
#include <string>
#include <string_view>

namespace demo_server {
namespace {

using namespace fmtkit::literals;

/// Administrators and the system own the event; everybody may ask for a reload, which costs no more than reading one
/// key.
constexpr wchar_t reload_event_access[] = L"D:(A;;GA;;;BA)(A;;GA;;;SY)(A;;0x00100002;;;WD)";

girder::unique_kernel_handle create_reload_event()
{
    girder::unique_local_memory descriptor;
    if (!::ConvertStringSecurityDescriptorToSecurityDescriptorW(reload_event_access, SDDL_REVISION_1, descriptor.put(),
                                                                nullptr))
        girder::throw_last_error("ConvertStringSecurityDescriptorToSecurityDescriptorW");
    SECURITY_ATTRIBUTES attributes{
        .nLength = sizeof attributes, .lpSecurityDescriptor = descriptor.get(), .bInheritHandle = FALSE};
    girder::unique_kernel_handle event(
        ::CreateEventW(&attributes, FALSE, FALSE, girder::as_wide(tidelink::reload_event_name)));
    const DWORD code = ::GetLastError();
    if (!event || code == ERROR_ALREADY_EXISTS)
        girder::throw_win32(code, "CreateEventW");
    return event;
}

std::u16string describe(const tidelink::ServerSettings& settings)
{
    std::u16string ports;
    for (const std::uint32_t port : settings.sharedPorts)
        fmtkit::append(ports, u" COM{}"_fmt, port);
    if (ports.empty())
        ports = u" all ports";
    return fmtkit::format(u"sharing{}; auto-discovery {}"_fmt, ports,
                          std::u16string_view(settings.autoDiscovery ? u"on" : u"off"));
}

std::u16string describe_stored_settings()
try {
    return describe(tidelink::LoadSettings());
} catch (const std::exception& error) {
    return fmtkit::format(u"the settings cannot be read: {}"_fmt, error.what());
}

} // namespace

server::server() : reload_(create_reload_event())
{}

void server::serve_until(HANDLE stop)
{
    log_line(u"started, " + describe_stored_settings());
    const HANDLE wake_ups[] = {stop, reload_.get()};
    for (;;) {
        switch (::WaitForMultipleObjects(2, wake_ups, FALSE, INFINITE)) {
        case WAIT_OBJECT_0:
            log_line(u"stopped");
            return;
        case WAIT_OBJECT_0 + 1:
            log_line(u"reloaded, " + describe_stored_settings());
            break;
        default:
            girder::throw_last_error("WaitForMultipleObjects");
        }
    }
}

} // namespace demo_server
