#include "serialisation/load_exception.h"
#include "settings/settings_store.h"
#include "support/generated_key.h"
#include "support/scratch_hive.h"

#include <windows.h>

#include <gmock/gmock.h>

#include <string>

namespace {

using namespace tidelink;
using testing::ElementsAre;

const std::wstring key_path = L"Software\\Zelmark\\Tidelink Server 7.01";

void store(const std::wstring& key, const wchar_t* name, DWORD type, DWORD number)
{
    ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, type, &number, sizeof number);
}

TEST(generated_keys_test, whatever_is_stored_what_can_be_read_is_loaded_and_the_rest_is_named)
{
    const support::scratch_hive hive;
    const ServerSettings defaults = DefaultServerSettings();
    for (unsigned seed = 1; seed <= 10'000; ++seed) {
        SCOPED_TRACE(seed);
        // The registry takes its time for large values.
        support::generated_key key(seed, seed % 50 == 0);
        key.store(key_path);
        const LoadedSettings loaded = LoadSettingsTolerantly();
        std::vector<std::u16string> failed;
        for (const LoadFailure& failure : loaded.failures)
            failed.push_back(failure.name);
        ASSERT_THAT(failed, testing::UnorderedElementsAreArray(key.unreadable()));
        if (key.unreadable().contains(u"language"))
            ASSERT_EQ(loaded.settings.language, defaults.language);
        if (key.unreadable().contains(u"sharedPorts"))
            ASSERT_EQ(loaded.settings.sharedPorts, defaults.sharedPorts);
        if (key.unreadable().empty())
            ASSERT_EQ(LoadSettings(), loaded.settings);
        else
            ASSERT_THROW(LoadSettings(), girder::nsm::details::load_exception);
    }
}

TEST(stored_ports_test, ports_may_be_stored_as_an_array_which_a_value_of_that_name_hides)
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
