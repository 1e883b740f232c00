#include "base/handles.h"
#include "settings/settings_store.h"
#include "support/scratch_hive.h"

#include <windows.h>

#include <gmock/gmock.h>

namespace {

using namespace tidelink;
using testing::ElementsAre;

const std::wstring key_path = L"Software\\Zelmark\\Tidelink Server 7.01";

void store(const std::wstring& key, const wchar_t* name, DWORD type, DWORD number)
{
    ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, type, &number, sizeof number);
}

TEST(settings_store_test, saved_settings_are_loaded_again)
{
    const support::scratch_hive hive;
    ServerSettings settings = DefaultServerSettings();
    settings.autoDiscovery = false;
    settings.sharedPorts = {3, 1};
    settings.language = u"pt-BR";
    settings.securityDescriptor = u"D:(A;;GA;;;WD)";
    SaveSettings(settings);
    EXPECT_EQ(LoadSettings(), settings);
    EXPECT_EQ(LoadSettingsTolerantly().settings, settings);
}

TEST(settings_store_test, ports_may_be_stored_as_an_array_which_a_value_of_that_name_hides)
{
    const support::scratch_hive hive;
    const std::wstring list = key_path + L"\\sharedPorts";
    store(list, L"@count", REG_DWORD, 2);
    store(list, L"00001", REG_DWORD, 1);
    store(list, L"00000", REG_DWORD, 7);
    EXPECT_THAT(LoadSettings().sharedPorts, ElementsAre(7, 1));
    store(key_path, L"sharedPorts", REG_BINARY, 3);
    EXPECT_THAT(LoadSettings().sharedPorts, ElementsAre(3));
    SaveSettings(DefaultServerSettings());
    EXPECT_EQ(LoadSettings(), DefaultServerSettings()) << "a save replaces the array, too";
}

} // namespace
