#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>

namespace tidelink {

/// Asks a translator for the corrected text of a string. \return empty when the box was cancelled
/// \param key  the string's key, the title of the box
/// \throws girder::system_error
std::optional<std::u16string> ask_for_correction(HWND owner, std::u16string_view key, std::u16string_view text);

} // namespace tidelink
