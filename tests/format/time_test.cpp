#include "format/format.h"
#include "format/literals.h"
#include "format/local_time.h"
#include "format/time_text.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using namespace fmtkit::literals;
using fmtkit::details::format_time;
using girder::file_time;

/// 2025-06-25 12:03:09 UTC.
constexpr std::int64_t summer = 1'750'852'989;

file_time at(std::int64_t seconds)
{
    return {girder::unix_epoch_ticks + seconds * girder::ticks_per_second};
}

/// The text shifted to UTC, so that the expectation does not depend on the zone of the run.
file_time at_local(std::int64_t seconds)
{
    const auto local = fmtkit::details::to_local_time(seconds);
    return at(seconds - std::int64_t{local->offset_minutes} * 60);
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
        EXPECT_EQ(format_time(time, pattern), text) << testing::PrintToString(pattern);
}

TEST(time_test, weeks_at_the_turn_of_the_year)
{
    EXPECT_EQ(format_time(at_local(1'735'646'400), u"%G-W%V"), u"2025-W01") << "2024-12-31";
    EXPECT_EQ(format_time(at_local(1'609'459'200), u"%G-W%V"), u"2020-W53") << "2021-01-01";
}

TEST(time_test, the_zone_is_numeric_and_follows_summer_time)
{
    const std::u16string text = *format_time(at(summer), u"%z");
    const int minutes = fmtkit::details::to_local_time(summer)->offset_minutes;
    EXPECT_EQ(text, fmtkit::format(u"{2?<}-{2?|}+{2?>}{0w2arf0}{1w2arf0}"_fmt, std::abs(minutes) / 60,
                                   std::abs(minutes) % 60, minutes < 0));
}

TEST(time_test, local_texts_are_there_and_short)
{
    for (const char16_t conversion : std::u16string_view(u"aAbBcpxX"))
        EXPECT_FALSE(
            fmtkit::details::locale_time_text(conversion, fmtkit::details::to_local_time(summer)->fields).empty() &&
            conversion != u'p');
    EXPECT_EQ(format_time(at(summer), u"%F %F %F %F %F")->size(), 40U);
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
