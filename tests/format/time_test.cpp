#include "format/format.h"
#include "format/literals.h"
#include "format/local_time.h"
#include "format/time_text.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace fmtkit::literals;
using fmtkit::details::time_text;
using girder::file_time;

/// 2025-06-25 12:03:09 UTC.
constexpr std::int64_t summer = 1'750'852'989;

file_time at(std::int64_t seconds)
{
    return {girder::unix_epoch_ticks + seconds * girder::ticks_per_second};
}

std::u16string written(file_time time, std::u16string_view pattern)
{
    time_text text;
    EXPECT_TRUE(text.write(time, pattern));
    return std::u16string(text.view());
}

/// East of Greenwich, in seconds, in the zone of the run.
std::int64_t zone_offset(std::int64_t seconds)
{
    std::tm local{};
    std::tm utc{};
    EXPECT_TRUE(fmtkit::details::to_local_time(seconds, local));
    const std::time_t time = seconds;
    utc = *std::gmtime(&time);
    const int day = local.tm_year != utc.tm_year ? local.tm_year - utc.tm_year : local.tm_yday - utc.tm_yday;
    return ((std::int64_t{day} * 24 + local.tm_hour - utc.tm_hour) * 60 + local.tm_min - utc.tm_min) * 60;
}

/// The time at which the clock of the run shows what it shows in UTC at `seconds`.
file_time at_local(std::int64_t seconds)
{
    return at(seconds - zone_offset(seconds));
}

TEST(time_test, own_conversions)
{
    const file_time time = at_local(summer);
    const std::pair<std::u16string_view, std::u16string_view> expectations[] = {
        {u"%FT%T", u"2025-06-25T12:03:09"},
        {u"%Y%m%d-%H%M%S", u"20250625-120309"},
        {u"%D %R", u"06/25/25 12:03"},
        {u"%C%y %e %I", u"2025 25 12"},
        {u"%j %U %W %V %G %g", u"176 25 25 26 2025 25"},
        {u"%u%w%%%n%t", u"33%\n\t"},
        {u"%Ey %Od", u"25 25"},
        {u"%Q 100%", u"%Q 100%"},
    };
    for (const auto& [pattern, text] : expectations)
        EXPECT_EQ(written(time, pattern), text) << testing::PrintToString(pattern);
}

TEST(time_test, weeks_at_the_turn_of_the_year)
{
    EXPECT_EQ(written(at_local(1'735'646'400), u"%G-W%V"), u"2025-W01") << "2024-12-31";
    EXPECT_EQ(written(at_local(1'609'459'200), u"%G-W%V"), u"2020-W53") << "2021-01-01";
}

TEST(time_test, the_zone_is_numeric_and_follows_summer_time)
{
    const std::int64_t minutes = zone_offset(summer) / 60;
    EXPECT_EQ(written(at(summer), u"%z"), fmtkit::format(u"{2?<}-{2?|}+{2?>}{0w2arf0}{1w2arf0}"_fmt,
                                                         std::abs(minutes) / 60, std::abs(minutes) % 60, minutes < 0));
}

TEST(time_test, local_texts_are_there_and_short)
{
    for (const std::u16string_view pattern : {u"%a", u"%A", u"%b", u"%B", u"%c", u"%h", u"%r", u"%x", u"%X", u"%Z"})
        EXPECT_FALSE(written(at(summer), pattern).empty()) << testing::PrintToString(pattern);
    EXPECT_EQ(written(at(summer), u"%F %F %F %F %F").size(), 40U);
}

TEST(time_test, what_cannot_be_converted_is_nothing_and_not_padded)
{
    for (const file_time outside :
         {file_time{0}, at(-1), at(32'535'216'000), file_time{std::numeric_limits<std::int64_t>::max()},
          file_time{std::numeric_limits<std::int64_t>::min()}})
        EXPECT_EQ(fmtkit::format(u"<{0t(%F)w20}>{1}"_fmt, outside, 1), u"<>1");
    EXPECT_EQ(fmtkit::format("{0w12art(%F)}"_fmt, at_local(summer)), "  2025-06-25");
}

} // namespace
