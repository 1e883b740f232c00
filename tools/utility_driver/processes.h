#pragma once

#include <windows.h>

#include <string_view>
#include <vector>

namespace utility_driver {

/// The processes that run now and have that executable's name.
std::vector<DWORD> processes_of(std::wstring_view executable);

/// Ends every process of that executable's name and waits until it is gone. \throws ui_driver::timed_out
void end_processes(std::wstring_view executable);

} // namespace utility_driver
