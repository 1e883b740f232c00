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

/// In seconds, east of Greenwich positive. Empty where the C runtime does not know the time.
[[gnu::noinline]] std::optional<std::int64_t> distance_at(std::int64_t seconds)
{
    std::tm local{};
    if (!to_local_time(seconds, local))
        return std::nullopt;
    return seconds_as_utc(local) - seconds;
}

/// What is known about a span: its number and the distance, in a form that one atomic write replaces.
class known_span {
public:
    known_span() = default;
    [[gnu::noinline]] explicit known_span(std::uint32_t number) : bits_((number + 1) << 16)
    {
        const std::int64_t begin = std::int64_t{number} << span_bits;
        const std::optional<std::int64_t> distance = distance_at(begin);
        if (distance && *distance % 60 == 0 && distance == distance_at(begin + span_length / 2) &&
            distance == distance_at(begin + span_length - 1))
            bits_ |= static_cast<std::uint32_t>(*distance / 60 + bias);
    }

    bool is_of(std::uint32_t number) const { return bits_ >> 16 == number + 1; }
    /// In seconds. Empty where it changes within the span or is not a number of minutes.
    std::optional<std::int64_t> distance() const
    {
        const auto biased = static_cast<int>(bits_ & 0xFFFF);
        return biased != 0 ? std::optional<std::int64_t>((biased - bias) * 60) : std::nullopt;
    }

private:
    static constexpr int bias = 0x4000;

    std::uint32_t bits_ = 0;
};

/// \param seconds  not negative
std::optional<std::int64_t> kept_distance(std::int64_t seconds)
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

/// \param shifted  local time in seconds since 1970, as if it were UTC
void set_fields(local_fields& local, std::int64_t shifted)
{
    constexpr std::int64_t seconds_of_day = 86'400;
    // Counted from one day earlier, for the west of Greenwich on the first day.
    const auto since_1969 = static_cast<std::uint64_t>(shifted + seconds_of_day);
    const auto second = static_cast<unsigned>(since_1969 % seconds_of_day);
    local.days = static_cast<int>(since_1969 / seconds_of_day) - 1;
    const chrono::year_month_day date(chrono::sys_days(chrono::days(local.days)));
    local.year = static_cast<int>(date.year());
    local.month = static_cast<int>(static_cast<unsigned>(date.month()));
    local.day = static_cast<int>(static_cast<unsigned>(date.day()));
    local.hour = static_cast<int>(second / 3600);
    local.minute = static_cast<int>(second / 60 % 60);
    local.second = static_cast<int>(second % 60);
}

} // namespace

int local_fields::weekday() const noexcept
{
    // The first of January 1970 was a Thursday.
    return (days + 7 + 4) % 7;
}

int local_fields::day_of_year() const noexcept
{
    return days -
           static_cast<int>(chrono::sys_days(chrono::year(year) / chrono::January / 1).time_since_epoch().count());
}

bool get_local_fields(std::int64_t seconds, local_fields& local)
{
    if (seconds < 0 || seconds > last_local_second)
        return false;
    std::optional<std::int64_t> distance = kept_distance(seconds);
    if (!distance)
        distance = distance_at(seconds);
    if (!distance)
        return false;
    local.distance = static_cast<int>(*distance / 60);
    set_fields(local, seconds + *distance);
    return true;
}

} // namespace fmtkit::details
