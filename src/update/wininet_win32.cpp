#include "base/system_library.h"
#include "base/win32_error.h"
#include "update/wininet.h"

namespace girder::http {

wininet_functions load_wininet()
{
    const system_library library(u"wininet.dll");
    const wininet_functions functions{
        .open = library.function<decltype(::InternetOpenW)>("InternetOpenW"),
        .set_status_callback = library.function<decltype(::InternetSetStatusCallbackW)>("InternetSetStatusCallbackW"),
        .canonicalize_url = library.function<decltype(::InternetCanonicalizeUrlW)>("InternetCanonicalizeUrlW"),
        .crack_url = library.function<decltype(::InternetCrackUrlW)>("InternetCrackUrlW"),
        .open_url = library.function<decltype(::InternetOpenUrlW)>("InternetOpenUrlW"),
        .query_info = library.function<decltype(::HttpQueryInfoW)>("HttpQueryInfoW"),
        .read_file = library.function<decltype(::InternetReadFile)>("InternetReadFile"),
        .close_handle = library.function<decltype(::InternetCloseHandle)>("InternetCloseHandle"),
    };
    HMODULE pinned = nullptr;
    if (!::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                              reinterpret_cast<const wchar_t*>(functions.open), &pinned))
        throw_last_error("GetModuleHandleExW");
    return functions;
}

} // namespace girder::http
