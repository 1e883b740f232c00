#pragma once

#include <cstdint>
#include <optional>

namespace tidelink {

/// How far the service manager could be asked about the server's service.
enum class service_lookup : std::uint8_t {
    failed,       ///< the manager or the service cannot be opened, or the service tells no status
    no_such_name, ///< there is no such service
    found,
};

/// The states of a service that matter here, with the numbers of SERVICE_STATUS::dwCurrentState.
namespace service_state {
inline constexpr std::uint32_t stopped = 1;
inline constexpr std::uint32_t start_pending = 2;
inline constexpr std::uint32_t stop_pending = 3;
inline constexpr std::uint32_t running = 4;
} // namespace service_state

/// What was found out about the server.
struct service_finding {
    service_lookup lookup = service_lookup::failed;
    std::uint32_t state = 0;     ///< of a service that was found: one of SERVICE_STATUS::dwCurrentState
    bool server_listens = false; ///< the reload event can be opened; asked only where may_run_standalone()
};

/// Whether a server that listens has to be an ordinary process: the service is not there or does not run.
bool may_run_standalone(const service_finding& finding) noexcept;

/// The texts of the status field, with their positions in the list of the string pack.
enum class service_text : std::uint8_t { standalone, not_installed, stopped, running };

/// What the main window shows about the service.
struct service_view {
    service_text status = service_text::standalone;
    bool can_start = false;
    bool can_stop = false;
    bool offers_install = false; ///< Start becomes Install; where not, it stays what it is

    bool operator==(const service_view&) const = default;
};

/// \return empty where the window keeps what it shows: in a transition that is not stopping, and while paused
std::optional<service_view> view_of(const service_finding& finding) noexcept;

} // namespace tidelink
