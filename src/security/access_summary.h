#pragma once

#include "security/access_entry.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace tidelink {

/// Who can connect to the server, as far as can be said in a few words.
enum class access_reach : std::uint8_t {
    everyone,           ///< but who is denied
    listed,             ///< some accounts or groups
    nobody_but_service, ///< only the service itself, because nobody else is allowed
    denied_first,       ///< only the service itself, because everyone is denied before anyone else is allowed
    nobody              ///< not even the service
};

struct access_summary {
    access_reach reach = access_reach::nobody;
    std::size_t allowed = 0; ///< of `listed`: how many accounts or groups can connect
    std::size_t denied = 0;  ///< of `listed` and `everyone`: how many others are denied

    bool operator==(const access_summary&) const = default;
};

/// What a stored list comes to. The server checks it from its start, so the first entry about an account or group
/// counts, and none counts behind an entry for everyone. Entries of other kinds, and those that do not apply to the
/// server itself or have no right but the service's mark, are not looked at. Memberships are unknown here.
/// \param stored  empty when the descriptor has no list, which lets everyone in
access_summary summarise(const std::optional<access_list>& stored);

} // namespace tidelink
