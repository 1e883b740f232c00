#include "format/local_fields.h"

#include "format/local_time.h"

#include <array>
#include <atomic>
#include <chrono>
#include <optional>

namespace fmtkit::details {
namespace {

namespace chrono = std::chrono;

/// The seconds since 1970 at which a clock of UTC shows these fields.
std::int64_t seconds_as_utc(const std::tm& fields)
{
    const chrono::sys_days first = chrono::year(fields.tm_year + 1900) / chrono::January / 1;
    return chrono::sys_seconds(first + chrono::days(fields.tm_yday) + chrono::hours(fields.tm_hour) +
                               chrono::minutes(fields.tm_min) + chrono::seconds(fields.tm_sec))
        .time_since_epoch()
        .count();
}

/// A span of about twelve days. No zone changes its distance to UTC and back within one.
constexpr int span_bits = 20;
constexpr std::int64_t span_length = std::int64_t{1} << span_bits;

/// Empty where it is not a number of minutes, or where the C runtime does not know the time.
std::optional<int> distance_at(std::int64_t seconds)
{
    std::tm local{};
    if (!to_local_time(seconds, local))
        return std::nullopt;
    const std::int64_t distance = seconds_as_utc(local) - seconds;
    return distance % 60 == 0 ? std::optional(static_cast<int>(distance / 60)) : std::nullopt;
}

/// What is known about a span: its number and the distance, in a form that one atomic write replaces.
class known_span {
public:
    known_span() = default;
    explicit known_span(std::uint32_t number) : bits_((number + 1) << 16)
    {
        const std::int64_t begin = std::int64_t{number} << span_bits;
        const std::optional<int> distance = distance_at(begin);
        if (distance && distance == distance_at(begin + span_length / 2) &&
            distance == distance_at(begin + span_length - 1))
            bits_ |= static_cast<std::uint32_t>(*distance + bias);
    }

    bool is_of(std::uint32_t number) const { return bits_ >> 16 == number + 1; }
    /// Empty where it changes within the span.
    std::optional<int> distance() const
    {
        const auto biased = static_cast<int>(bits_ & 0xFFFF);
        return biased != 0 ? std::optional(biased - bias) : std::nullopt;
    }

private:
    static constexpr int bias = 0x4000;

    std::uint32_t bits_ = 0;
};

/// \param seconds  not negative
std::optional<int> kept_distance(std::int64_t seconds)
{
    // More than sixty years, each span at its own place.
    static constinit std::array<std::atomic<known_span>, 2048> spans{};
    const auto number = static_cast<std::uint32_t>(seconds >> span_bits);
    std::atomic<known_span>& kept = spans[number % spans.size()];
    known_span span = kept.load(std::memory_order_relaxed);
    if (!span.is_of(number)) {
        span = known_span(number);
        kept.store(span, std::memory_order_relaxed);
    }
    return span.distance();
}

constexpr std::array<int, 12> days_before_month = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};

void set_fields(std::tm& local, std::int64_t shifted)
{
    constexpr std::int64_t seconds_of_day = 86'400;
    // Not negative: counted from one day earlier, for the west of Greenwich on the first day.
    const auto days = static_cast<std::uint64_t>(shifted + seconds_of_day) / seconds_of_day;
    const auto second = static_cast<unsigned>(static_cast<std::uint64_t>(shifted + seconds_of_day) % seconds_of_day);
    const chrono::sys_days day{chrono::days(static_cast<int>(days) - 1)};
    const chrono::year_month_day date(day);
    local.tm_year = static_cast<int>(date.year()) - 1900;
    local.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
    local.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
    local.tm_hour = static_cast<int>(second / 3600);
    local.tm_min = static_cast<int>(second / 60 % 60);
    local.tm_sec = static_cast<int>(second % 60);
    local.tm_wday = static_cast<int>(chrono::weekday(day).c_encoding());
    const bool behind_leap_day = date.year().is_leap() && date.month() > chrono::February;
    local.tm_yday = days_before_month[static_cast<std::size_t>(local.tm_mon)] + local.tm_mday - 1 + behind_leap_day;
    local.tm_isdst = -1;
}

} // namespace

bool get_local_fields(std::int64_t seconds, local_fields& local)
{
    if (seconds < 0 || seconds > last_local_second)
        return false;
    if (const std::optional<int> distance = kept_distance(seconds)) {
        local.distance = *distance;
        set_fields(local.time, seconds + std::int64_t{*distance} * 60);
        return true;
    }
    if (!to_local_time(seconds, local.time))
        return false;
    local.distance = static_cast<int>((seconds_as_utc(local.time) - seconds) / 60);
    return true;
}

} // namespace fmtkit::details
