#include "format/local_fields.h"
#include "format/local_time.h"

#include <gtest/gtest.h>

#include <random>

// Run in each zone of the table in CMakeLists.txt: the C runtime is the oracle.

namespace {

using namespace fmtkit::details;

void expect_as_the_runtime(std::int64_t seconds)
{
    local_fields fields;
    std::tm expected{};
    ASSERT_TRUE(get_local_fields(seconds, fields)) << seconds;
    ASSERT_TRUE(to_local_time(seconds, expected)) << seconds;
    EXPECT_TRUE(fields.year == expected.tm_year + 1900 && fields.month == expected.tm_mon + 1 &&
                fields.day == expected.tm_mday && fields.hour == expected.tm_hour && fields.minute == expected.tm_min &&
                fields.second == expected.tm_sec && fields.weekday() == expected.tm_wday &&
                fields.day_of_year() == expected.tm_yday)
        << seconds;
}

TEST(local_time_fields_test, are_those_of_the_runtime)
{
    constexpr std::int64_t quarter = 900;
    constexpr std::int64_t of_2025 = 1'735'689'600;
    for (std::int64_t seconds = of_2025; seconds < of_2025 + 366 * 86'400; seconds += quarter)
        expect_as_the_runtime(seconds);
    for (std::int64_t seconds = 0; seconds < 100 * 86'400; seconds += 3599)
        expect_as_the_runtime(seconds);

    std::mt19937_64 random(1);
    std::uniform_int_distribution<std::int64_t> any(0, last_local_second);
    for (int i = 0; i < 20'000; ++i)
        expect_as_the_runtime(any(random));
    expect_as_the_runtime(last_local_second);
}

} // namespace
