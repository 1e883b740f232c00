// The stand-in server:
//
//     tl_server.exe -install-service   registers itself as the service zelpssrv; the exit code is an HRESULT
//     tl_server.exe                    serves: as the service when the service manager started it, else standalone
//                                      until it is ended
//
// A file tl_server.ini beside it makes it slow or faulty; script.h tells how.

#include "base/win32_error.h"
#include "install.h"
#include "script.h"
#include "server.h"
#include "service.h"

#include <string_view>

namespace {

HRESULT install(const demo_server::script& script)
{
    ::Sleep(script.install_delay_ms);
    if (SUCCEEDED(script.install_exit_code))
        demo_server::install_service();
    return script.install_exit_code;
}

} // namespace

int wmain(int argc, wchar_t** argv)
try {
    const demo_server::script script = demo_server::read_script();
    if (argc == 2 && argv[1] == std::wstring_view(L"-install-service"))
        return install(script);
    if (!demo_server::run_as_service(script))
        // A process becomes signalled when it ends: waiting for this one itself is waiting for no stop at all.
        demo_server::server().serve_until(::GetCurrentProcess());
    return S_OK;
} catch (const girder::system_error& error) {
    return HRESULT_FROM_WIN32(error.code());
}
