#pragma once

#include <windows.h>

#include <string_view>

namespace girder::ui {

/// Replaces the clipboard's content by text. Where the clipboard is held by another program nothing happens.
void copy_to_clipboard(HWND owner, std::u16string_view text) noexcept;

} // namespace girder::ui
