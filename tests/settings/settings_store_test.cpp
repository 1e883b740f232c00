#include "base/handles.h"
#include "settings/settings_store.h"
#include "support/reload_listener.h"
#include "support/scratch_hive.h"

#include <windows.h>

#include <gmock/gmock.h>

namespace {

using namespace tidelink;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const wchar_t* key_path = L"Software\\Zelmark\\Tidelink Server 7.01";

class settings_store_test : public testing::Test {
protected:
    void set(const wchar_t* name, DWORD type, const void* data, DWORD size)
    {
        ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, key_path, name, type, data, size);
    }

    static std::vector<std::wstring> value_names()
    {
        girder::unique_registry_key key;
        std::vector<std::wstring> names;
        if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, key_path, 0, KEY_READ, key.put()) != ERROR_SUCCESS)
            return {L"(no key)"};
        wchar_t name[256];
        for (DWORD i = 0;; ++i) {
            DWORD length = 256;
            if (::RegEnumValueW(key.get(), i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
                return names;
            names.emplace_back(name, length);
        }
    }

    support::scratch_hive hive_;
};

TEST_F(settings_store_test, loading_a_missing_key_gives_defaults_and_creates_it)
{
    EXPECT_EQ(LoadSettings(), DefaultServerSettings());
    EXPECT_THAT(value_names(), IsEmpty());
}

TEST_F(settings_store_test, saved_settings_are_loaded_again_and_what_stood_there_before_is_gone)
{
    set(L"foreign", REG_SZ, L"x", 4);
    ServerSettings settings = DefaultServerSettings();
    settings.autoDiscovery = false;
    settings.sharedPorts = {3, 1};
    settings.language = u"pt-BR";
    settings.securityDescriptor = u"D:(A;;GA;;;WD)";
    SaveSettings(settings);
    EXPECT_EQ(LoadSettings(), settings);
    EXPECT_EQ(LoadSettingsTolerantly().settings, settings);
    EXPECT_THAT(value_names(),
                testing::UnorderedElementsAre(L"securityDescriptor", L"autoDiscovery", L"sharedPorts", L"language"));
    SaveSettings(DefaultServerSettings());
    EXPECT_THAT(value_names(), IsEmpty());
}

TEST_F(settings_store_test, each_save_sets_the_servers_event_once)
{
    SaveSettings(DefaultServerSettings());
    const support::reload_listener server;
    EXPECT_EQ(server.signals(), 0);
    SaveSettings(DefaultServerSettings());
    EXPECT_EQ(server.signals(), 1);
    LoadSettings();
    EXPECT_EQ(server.signals(), 1) << "loading signals nothing";
}

TEST_F(settings_store_test, ports_may_be_stored_as_an_array_which_a_value_of_that_name_hides)
{
    girder::unique_registry_key list;
    const std::wstring path = std::wstring(key_path) + L"\\sharedPorts";
    ASSERT_EQ(::RegCreateKeyW(HKEY_LOCAL_MACHINE, path.c_str(), list.put()), ERROR_SUCCESS);
    const std::pair<const wchar_t*, DWORD> elements[] = {{L"@count", 2}, {L"00001", 1}, {L"00000", 7}};
    for (const auto& [name, number] : elements)
        ASSERT_EQ(::RegSetKeyValueW(list.get(), nullptr, name, REG_DWORD, &number, sizeof number), ERROR_SUCCESS);
    EXPECT_THAT(LoadSettings().sharedPorts, ElementsAre(7, 1));
    constexpr DWORD port = 3;
    set(L"sharedPorts", REG_BINARY, &port, sizeof port);
    EXPECT_THAT(LoadSettings().sharedPorts, ElementsAre(3));
    SaveSettings(DefaultServerSettings());
    EXPECT_THAT(LoadSettings().sharedPorts, IsEmpty()) << "a save replaces the array, too";
}

} // namespace
