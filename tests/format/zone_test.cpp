#include "format/format.h"
#include "format/literals.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <string>

// Run once in each zone and locale of the table in CMakeLists.txt, which sets TZ and LC_ALL.

namespace {

using namespace fmtkit::literals;

constexpr girder::file_time at(std::int64_t seconds)
{
    return {girder::unix_epoch_ticks + seconds * girder::ticks_per_second};
}

constexpr girder::file_time summer = at(1'750'852'989); // 2025-06-25 12:03:09 UTC
constexpr girder::file_time winter = at(1'736'942'400); // 2025-01-15 12:00:00 UTC

std::string environment(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "";
}

TEST(zone_test, local_time_has_a_numeric_zone)
{
    struct texts {
        std::string summer, winter;
    };
    const std::map<std::string, texts> expected = {
        {"UTC0", {"2025-06-25T12:03:09+0000", "2025-01-15T12:00:00+0000"}},
        {"CET-1CEST", {"2025-06-25T14:03:09+0200", "2025-01-15T13:00:00+0100"}},
        {"EST5EDT", {"2025-06-25T08:03:09-0400", "2025-01-15T07:00:00-0500"}},
        {"IST-5:30", {"2025-06-25T17:33:09+0530", "2025-01-15T17:30:00+0530"}},
        {"NST3:30NDT", {"2025-06-25T09:33:09-0230", "2025-01-15T08:30:00-0330"}},
    };
    const auto zone = expected.find(environment("TZ"));
    ASSERT_NE(zone, expected.end()) << environment("TZ");
    EXPECT_EQ(fmtkit::format("{t(%FT%T%z)}"_fmt, summer), zone->second.summer);
    EXPECT_EQ(fmtkit::format("{t(%FT%T%z)}"_fmt, winter), zone->second.winter);
}

} // namespace
