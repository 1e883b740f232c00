// The stand-in server:
//
//     tl_server.exe -install-service   registers itself as the service zelpssrv; the exit code is an HRESULT
//     tl_server.exe                    serves: as the service when the service manager started it, else standalone
//                                      until it is ended

#include "base/win32_error.h"
#include "install.h"
#include "server.h"
#include "service.h"

#include <string_view>

int wmain(int argc, wchar_t** argv)
try {
    if (argc == 2 && argv[1] == std::wstring_view(L"-install-service"))
        demo_server::install_service();
    else if (!demo_server::run_as_service())
        // A process becomes signalled when it ends: waiting for this one itself is waiting for no stop at all.
        demo_server::server().serve_until(::GetCurrentProcess());
    return S_OK;
} catch (const girder::system_error& error) {
    return HRESULT_FROM_WIN32(error.code());
}
