#include "base/system_library.h"
#include "base/wide.h"
#include "base/win32_error.h"

namespace girder {

system_library::system_library(const char16_t* name)
    : module_(::LoadLibraryExW(as_wide(name), nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32))
{
    if (!module_)
        throw_last_error("LoadLibraryExW");
}

FARPROC system_library::find(const char* name) const
{
    const FARPROC address = ::GetProcAddress(module_.get(), name);
    if (!address)
        throw_last_error("GetProcAddress");
    return address;
}

} // namespace girder
