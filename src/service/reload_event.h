#pragma once

namespace tidelink {

/// The event that a running server creates and waits on: it reads its settings again whenever the event is set.
inline constexpr const char16_t* reload_event_name = u"Global\\tidelink_{35B11BAB-5238-4E93-B06A-92332C5D20FA}_v1.01";

/// Whether a server listens: the event can be opened for setting it. Windows only.
bool can_signal_reload() noexcept;

/// Tells a running server to read its settings again; does nothing when there is no such event, because no server
/// listens. Does not wait for the server. Windows only.
/// \throws girder::system_error when the event is there but cannot be opened, set or closed
void signal_reload();

} // namespace tidelink
