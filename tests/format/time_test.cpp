#include "format/format.h"
#include "format/literals.h"
#include "format/local_fields.h"
#include "format/local_time.h"
#include "format/time_text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <map>
#include <random>
#include <string>

// Run in each zone and locale of the table in CMakeLists.txt, which sets TZ and LC_ALL.

namespace {

using namespace fmtkit::literals;
using namespace fmtkit::details;
using girder::file_time;

constexpr std::int64_t summer = 1'750'852'989; ///< 2025-06-25 12:03:09 UTC
constexpr std::int64_t winter = 1'736'942'400; ///< 2025-01-15 12:00:00 UTC

file_time at(std::int64_t seconds)
{
    return {girder::unix_epoch_ticks + seconds * girder::ticks_per_second};
}

std::u16string written(file_time time, std::u16string_view pattern)
{
    char16_t text[time_text_room];
    char16_t* const end = write_time_text(text, time, pattern);
    EXPECT_TRUE(end);
    return {text, end ? end : text};
}

/// What is expected in the place that the environment names.
template <typename Texts>
Texts expected_in(const char* variable, const std::map<std::string, Texts>& places)
{
    const char* const place = std::getenv(variable);
    const auto found = places.find(place ? place : "");
    EXPECT_NE(found, places.end()) << variable;
    return found != places.end() ? found->second : Texts();
}

struct zone_texts {
    std::string summer, winter;
    std::int64_t winter_minutes; ///< to UTC
};

zone_texts zone()
{
    return expected_in<zone_texts>("TZ",
                                   {{"UTC0", {"2025-06-25T12:03:09+0000", "2025-01-15T12:00:00+0000", 0}},
                                    {"CET-1CEST", {"2025-06-25T14:03:09+0200", "2025-01-15T13:00:00+0100", 60}},
                                    {"EST5EDT", {"2025-06-25T08:03:09-0400", "2025-01-15T07:00:00-0500", -300}},
                                    {"IST-5:30", {"2025-06-25T17:33:09+0530", "2025-01-15T17:30:00+0530", 330}},
                                    {"NST3:30NDT", {"2025-06-25T09:33:09-0230", "2025-01-15T08:30:00-0330", -210}}});
}

/// The time at which the clock of the run shows in winter what it shows in UTC at `seconds`.
file_time at_local(std::int64_t seconds)
{
    return at(seconds - zone().winter_minutes * 60);
}

TEST(time_test, is_local_with_a_numeric_zone)
{
    EXPECT_EQ(fmtkit::format("{t(%FT%T%z)}"_fmt, at(summer)), zone().summer);
    EXPECT_EQ(fmtkit::format("{t(%FT%T%z)}"_fmt, at(winter)), zone().winter);
}

TEST(time_test, names_and_forms_are_those_of_the_users_locale)
{
    struct locale_texts {
        std::u16string names, short_date, clock, grouped;
    };
    const auto expected = expected_in<locale_texts>(
        "LC_ALL", {{"en_US.UTF-8", {u"Tuesday November Nov", u"11/25/2025", u"12:03:09 PM", u"1,234,567 -12 999"}},
                   {"de_DE.UTF-8", {u"Dienstag November Nov", u"25.11.2025", u"12:03:09", u"1.234.567 -12 999"}},
                   {"it_IT.UTF-8", {u"martedì novembre nov", u"25/11/2025", u"12:03:09", u"1.234.567 -12 999"}}});
    const file_time time = at_local(1'764'072'189); // 2025-11-25 12:03:09
    EXPECT_EQ(written(time, u"%A %B %b"), expected.names);
    EXPECT_TRUE(written(time, u"%a").starts_with(expected.names.substr(0, 2)));
    EXPECT_EQ(written(time, u"%x"), expected.short_date);
    EXPECT_EQ(written(time, u"%X"), expected.clock);
    EXPECT_NE(written(time, u"%c").find(u"12:03:09"), std::u16string::npos);
    EXPECT_NE(written(time, u"%r").find(u"12:03:09"), std::u16string::npos);
    EXPECT_FALSE(written(time, u"%Z").empty());
    EXPECT_EQ(fmtkit::format(u"{0l} {1l} {2l}"_fmt, 1'234'567, -12, 999), expected.grouped);
}

TEST(time_test, own_conversions)
{
    const file_time time = at_local(1'762'300'989); // 2025-11-05 00:03:09
    const std::pair<std::u16string_view, std::u16string_view> expectations[] = {
        {u"%FT%T", u"2025-11-05T00:03:09"},
        {u"%Y%m%d-%H%M%S", u"20251105-000309"},
        {u"%D %R", u"11/05/25 00:03"},
        {u"%C%y %e %I", u"2025  5 12"},
        {u"%j %U %W %V %G %g", u"309 44 44 45 2025 25"},
        {u"%u%w%%%n%t", u"33%\n\t"},
        {u"%Ey %Od", u"25 05"},
        {u"%Q 100%", u"%Q 100%"},
        {u"%F %F %F %F %F", u"2025-11-05 2025-11-05 2025-11-05 2025-11"},
    };
    for (const auto& [pattern, text] : expectations)
        EXPECT_EQ(written(time, pattern), text) << testing::PrintToString(pattern);
}

TEST(time_test, what_cannot_be_converted_is_nothing_and_not_padded)
{
    for (const file_time outside :
         {file_time{0}, at(-1), at(last_local_second + 1), file_time{std::numeric_limits<std::int64_t>::max()},
          file_time{std::numeric_limits<std::int64_t>::min()}})
        EXPECT_EQ(fmtkit::format(u"<{0t(%F)w20}>{1}"_fmt, outside, 1), u"<>1");
    EXPECT_EQ(fmtkit::format("{0w12art(%F)}"_fmt, at(winter)), "  2025-01-15");
}

/// The C runtime is the oracle.
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

TEST(time_test, fields_are_those_of_the_runtime)
{
    constexpr std::int64_t quarter = 900;
    constexpr std::int64_t day = 86'400;
    constexpr std::int64_t of_2025 = 1'735'689'600;
    for (std::int64_t seconds = of_2025; seconds < of_2025 + 366 * day; seconds += quarter)
        expect_as_the_runtime(seconds);
    for (std::int64_t seconds = 0; seconds < 100 * day; seconds += 3599)
        expect_as_the_runtime(seconds);

    std::mt19937_64 random(1);
    std::uniform_int_distribution<std::int64_t> any(0, last_local_second);
    for (int i = 0; i < 20'000; ++i)
        expect_as_the_runtime(any(random));
    expect_as_the_runtime(last_local_second);
}

} // namespace
