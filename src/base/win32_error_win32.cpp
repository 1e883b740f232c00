#include "base/handles.h"
#include "base/wide.h"
#include "base/win32_error.h"

namespace girder {

void throw_win32(DWORD code, const char* call)
{
    throw system_error(code, call);
}

void throw_last_error(const char* call)
{
    const DWORD code = ::GetLastError();
    throw_win32(code, call);
}

void throw_if_failed(HRESULT result, const char* call)
{
    if (FAILED(result))
        throw system_error(static_cast<std::uint32_t>(result), call);
}

std::u16string system_message(std::uint32_t code)
{
    constexpr DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM;
    wchar_t* buffer = nullptr;
    // With FORMAT_MESSAGE_ALLOCATE_BUFFER the parameter takes the address of a pointer instead of a buffer.
    const DWORD length = ::FormatMessageW(flags, nullptr, code, 0, reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
    const unique_local_memory owner{buffer};
    std::u16string_view text = length == 0 ? std::u16string_view{} : as_utf16({buffer, length});
    text = text.substr(0, text.find_last_not_of(u" \r\n\t") + 1);
    return std::u16string(text);
}

} // namespace girder
