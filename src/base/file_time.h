#pragma once

#include <compare>
#include <cstdint>

namespace girder {

/// A point in time on the FILETIME scale: 100-nanosecond ticks since 1601-01-01 00:00 UTC.
struct file_time {
    std::int64_t ticks = 0;

    auto operator<=>(const file_time&) const = default;
};

/// 1970-01-01 00:00 UTC on the FILETIME scale.
inline constexpr std::int64_t unix_epoch_ticks = 116'444'736'000'000'000;
inline constexpr std::int64_t ticks_per_second = 10'000'000;

/// The current system time (GetSystemTimeAsFileTime). Windows only.
file_time system_now() noexcept;

} // namespace girder
