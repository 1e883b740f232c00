#pragma once

#include "base/system_error.h"

#include <windows.h>

#include <string>

namespace girder {

/// \throws system_error with a Windows error code that a call returned or that was read from GetLastError
[[noreturn]] void throw_win32(DWORD code, const char* call);

/// Reads GetLastError first of all, so it must directly follow the failing call.
/// \throws system_error
[[noreturn]] void throw_last_error(const char* call);

/// \throws system_error with the HRESULT when it is a failure code
void throw_if_failed(HRESULT result, const char* call);

/// The system's text for a Windows error code or HRESULT (FormatMessageW) in the user's language, without trailing
/// white space; empty when the system has none.
std::u16string system_message(std::uint32_t code);

} // namespace girder
