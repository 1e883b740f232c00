#pragma once

#include <windows.h>

#include <wininet.h>

namespace girder::http {

/// The functions of wininet.dll that are used here. The library stays loaded for the life of the process: its last
/// callback may come after everything that has used it is gone.
struct wininet_functions {
    decltype(::InternetOpenW)* open;
    decltype(::InternetSetStatusCallbackW)* set_status_callback;
    decltype(::InternetCanonicalizeUrlW)* canonicalize_url;
    decltype(::InternetCrackUrlW)* crack_url;
    decltype(::InternetOpenUrlW)* open_url;
    decltype(::HttpQueryInfoW)* query_info;
    decltype(::InternetReadFile)* read_file;
    decltype(::InternetCloseHandle)* close_handle;
};

/// Loads the library. \throws system_error
wininet_functions load_wininet();

} // namespace girder::http
