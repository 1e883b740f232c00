#pragma once

#include <cstdint>
#include <ctime>

namespace fmtkit::details {

struct local_fields {
    std::tm time{};   ///< tm_isdst and what else tells about summer time may be unknown
    int distance = 0; ///< to UTC in minutes, east of Greenwich positive
};

/// Local time as to_local_time gives it, but much faster: the zone's distance to UTC is asked from the C runtime for
/// twelve days at once and kept for the life of the process, as the C runtime keeps the zone.
/// \param seconds  since 1970-01-01 UTC
/// \return false where to_local_time does
bool get_local_fields(std::int64_t seconds, local_fields& local);

} // namespace fmtkit::details
