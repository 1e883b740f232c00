#include "format/format.h"
#include "format/literals.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <string>

// Run once in each locale of the table in CMakeLists.txt, which sets LC_ALL.

namespace {

using namespace fmtkit::literals;

TEST(short_date_test, follows_the_users_locale)
{
    constexpr girder::file_time november{girder::unix_epoch_ticks + 1'764'072'000 * girder::ticks_per_second};
    const std::map<std::string, std::u16string> expected = {
        {"C", u"11/25/2025"}, {"de_DE.UTF-8", u"25.11.2025"}, {"ja_JP.UTF-8", u"2025/11/25"}};
    const char* const named = std::getenv("LC_ALL");
    const auto locale = expected.find(named ? named : "");
    ASSERT_NE(locale, expected.end());
    EXPECT_EQ(fmtkit::format(u"{3t(%x)}"_fmt, 0, 0, 0, november), locale->second);
}

TEST(short_date_test, digits_are_grouped_as_the_locale_does)
{
    const std::map<std::string, std::u16string> expected = {
        {"C", u"1,234,567"}, {"de_DE.UTF-8", u"1.234.567"}, {"ja_JP.UTF-8", u"1,234,567"}};
    const char* const named = std::getenv("LC_ALL");
    const auto locale = expected.find(named ? named : "");
    ASSERT_NE(locale, expected.end());
    EXPECT_EQ(fmtkit::format(u"{0l}"_fmt, 1'234'567), locale->second);
    EXPECT_EQ(fmtkit::format(u"{0l} {1l}"_fmt, -12, 999), u"-12 999");
}

} // namespace
