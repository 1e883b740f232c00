#pragma once

#include <windows.h>

#include <string>

namespace girder::ui {

/// Asks the shell to open an address, as a double click would.
/// \param owner  of what the shell shows
/// \throws system_error with the shell's code
void open_by_shell(HWND owner, const std::u16string& address);

} // namespace girder::ui
