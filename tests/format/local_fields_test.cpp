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
    const std::tm& actual = fields.time;
    EXPECT_TRUE(actual.tm_year == expected.tm_year && actual.tm_mon == expected.tm_mon &&
                actual.tm_mday == expected.tm_mday && actual.tm_hour == expected.tm_hour &&
                actual.tm_min == expected.tm_min && actual.tm_sec == expected.tm_sec &&
                actual.tm_wday == expected.tm_wday && actual.tm_yday == expected.tm_yday)
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
