#include "base/debug_log.h"
#include "base/handles.h"

#include <exception>

namespace girder::handle_traits {
namespace {

class last_error_keeper {
public:
    last_error_keeper() noexcept : code_(::GetLastError()) {}
    last_error_keeper(const last_error_keeper&) = delete;
    last_error_keeper& operator=(const last_error_keeper&) = delete;
    ~last_error_keeper() { ::SetLastError(code_); }

private:
    DWORD code_;
};

} // namespace

void close_kernel(HANDLE handle) noexcept
{
    const last_error_keeper keeper;
    if (::CloseHandle(handle))
        return;
    log_failure({.code = ::GetLastError(), .context = "CloseHandle"});
    std::terminate();
}

void close_find(HANDLE handle) noexcept
{
    const last_error_keeper keeper;
    ::FindClose(handle);
}

void close_view(const void* address) noexcept
{
    const last_error_keeper keeper;
    ::UnmapViewOfFile(address);
}

void free_library(HMODULE module) noexcept
{
    const last_error_keeper keeper;
    ::FreeLibrary(module);
}

void free_local(void* memory) noexcept
{
    const last_error_keeper keeper;
    ::LocalFree(memory);
}

void close_key(HKEY key) noexcept
{
    const last_error_keeper keeper;
    ::RegCloseKey(key);
}

void close_service(SC_HANDLE handle) noexcept
{
    const last_error_keeper keeper;
    ::CloseServiceHandle(handle);
}

void delete_gdi(HGDIOBJ object) noexcept
{
    const last_error_keeper keeper;
    ::DeleteObject(object);
}

void delete_device(HDC device) noexcept
{
    const last_error_keeper keeper;
    ::DeleteDC(device);
}

void remove_hook(HHOOK hook) noexcept
{
    const last_error_keeper keeper;
    ::UnhookWindowsHookEx(hook);
}

} // namespace girder::handle_traits
