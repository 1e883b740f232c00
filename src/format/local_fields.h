#pragma once

#include <cstdint>

namespace fmtkit::details {

/// A date and a time of day as a local clock and calendar show them.
struct local_fields {
    int year = 1970;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int days = 0;     ///< since 1970-01-01; -1 is possible
    int distance = 0; ///< to UTC in minutes, east of Greenwich positive

    /// 0 for Sunday.
    int weekday() const noexcept;
    /// 0 for the first of January.
    int day_of_year() const noexcept;
};

/// Local time as to_local_time gives it, but much faster: the zone's distance to UTC is asked from the C runtime for
/// twelve days at once and kept for the life of the process, as the C runtime keeps the zone.
/// \param seconds  since 1970-01-01 UTC
/// \return false where to_local_time does
bool get_local_fields(std::int64_t seconds, local_fields& local);

} // namespace fmtkit::details
