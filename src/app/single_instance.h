#pragma once

namespace tidelink {

/// The exact caption of the main window. It is never translated: a starting copy finds the running one by it.
inline constexpr const wchar_t* main_window_title = L"Zelmark Tidelink Server Control";

/// Brings the window of a running copy to the front.
/// \return whether there is one; decided by the window's title alone, whichever program it belongs to
bool activate_running_copy() noexcept;

} // namespace tidelink
