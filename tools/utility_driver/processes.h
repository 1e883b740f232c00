#pragma once

#include <string_view>

namespace utility_driver {

/// Ends every process of that executable's name and waits until it is gone. \throws ui_driver::timed_out
void end_processes(std::wstring_view executable);

} // namespace utility_driver
