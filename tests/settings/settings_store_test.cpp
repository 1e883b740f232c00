#include "base/handles.h"
#include "base/system_error.h"
#include "base/wide.h"
#include "service/reload_event.h"
#include "settings/settings_store.h"
#include "support/reload_listener.h"
#include "support/scratch_hive.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <sddl.h>

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

TEST_F(settings_store_test, the_key_is_named_after_the_products_version)
{
    EXPECT_EQ(SettingsKeyPath(), u"Software\\Zelmark\\Tidelink Server 7.01");
}

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

TEST_F(settings_store_test, what_can_be_read_is_loaded_and_the_rest_is_reported)
{
    constexpr DWORD number = 1;
    constexpr BYTE odd[] = {1, 0, 0, 0, 9};
    set(L"language", REG_SZ, L"de", 6);
    set(L"autoDiscovery", REG_SZ, L"no", 6);
    set(L"securityDescriptor", REG_DWORD, &number, sizeof number);
    set(L"sharedPorts", REG_BINARY, odd, sizeof odd);
    set(L"unknown", REG_MULTI_SZ, L"\0", 4);
    const LoadedSettings loaded = LoadSettingsTolerantly();
    ServerSettings expected = DefaultServerSettings();
    expected.language = u"de";
    EXPECT_EQ(loaded.settings, expected);
    std::vector<std::u16string> failures;
    for (const LoadFailure& failure : loaded.failures)
        failures.push_back(failure.name + u": " + failure.text);
    EXPECT_THAT(failures,
                testing::UnorderedElementsAre(u"autoDiscovery: Boolean expected",
                                              u"securityDescriptor: String expected", u"sharedPorts: Bad format"));
    EXPECT_THAT(value_names(), testing::SizeIs(5)) << "loading writes nothing";
    EXPECT_THROW(LoadSettings(), girder::nsm::details::load_exception);
}

void set_security(HKEY key, const wchar_t* text)
{
    girder::unique_local_memory descriptor;
    ASSERT_TRUE(
        ::ConvertStringSecurityDescriptorToSecurityDescriptorW(text, SDDL_REVISION_1, descriptor.put(), nullptr));
    ASSERT_EQ(::RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, descriptor.get()), ERROR_SUCCESS);
}

TEST_F(settings_store_test, a_key_that_cannot_be_opened_is_reported_with_its_code)
{
    SaveSettings(DefaultServerSettings());
    girder::unique_registry_key key;
    ASSERT_EQ(::RegOpenKeyExW(HKEY_LOCAL_MACHINE, key_path, 0, KEY_ALL_ACCESS, key.put()), ERROR_SUCCESS);
    set_security(key.get(), L"D:P(D;;GA;;;WD)");
    const LoadedSettings loaded = LoadSettingsTolerantly();
    set_security(key.get(), L"D:P(A;;GA;;;WD)");
    EXPECT_EQ(loaded.settings, DefaultServerSettings());
    ASSERT_EQ(loaded.failures.size(), 1U);
    EXPECT_EQ(loaded.failures[0].name, u"");
    EXPECT_EQ(loaded.failures[0].code, std::uint32_t{ERROR_ACCESS_DENIED});
}

} // namespace
