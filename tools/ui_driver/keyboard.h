#pragma once

#include <windows.h>

#include <initializer_list>

namespace ui_driver {

/// Presses a key as a keyboard does (SendInput): it reaches the window with the focus, with the modifiers held down.
/// \param key        virtual-key code; letters and digits are their own upper-case codes
/// \param modifiers  VK_SHIFT, VK_CONTROL, VK_MENU (Alt)
/// \throws girder::system_error
void press_key(WORD key, std::initializer_list<WORD> modifiers = {});

} // namespace ui_driver
