#include "settings/settings_key.h"

#include <gtest/gtest.h>

namespace {

using tidelink::SettingsKeyPath;

TEST(settings_key_test, minor_versions_have_two_digits)
{
    EXPECT_EQ(SettingsKeyPath({.major = 7, .minor = 1}), u"Software\\Zelmark\\Tidelink Server 7.01");
    EXPECT_EQ(SettingsKeyPath({.major = 12, .minor = 3}), u"Software\\Zelmark\\Tidelink Server 12.03");
    EXPECT_EQ(SettingsKeyPath({.major = 7, .minor = 10}), u"Software\\Zelmark\\Tidelink Server 7.10");
    EXPECT_EQ(SettingsKeyPath({}), u"Software\\Zelmark\\Tidelink Server 0.00");
}

} // namespace
