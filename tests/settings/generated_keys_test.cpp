#include "serialisation/load_exception.h"
#include "settings/settings_store.h"
#include "support/generated_key.h"
#include "support/scratch_hive.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace tidelink;

constexpr const wchar_t* key_path = L"Software\\Zelmark\\Tidelink Server 7.01";

/// When the key was last written to.
std::uint64_t last_write()
{
    girder::unique_registry_key key;
    FILETIME time{};
    ::RegOpenKeyExW(HKEY_LOCAL_MACHINE, key_path, 0, KEY_READ, key.put());
    ::RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                       nullptr, &time);
    return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

std::set<std::u16string> names_of(const std::vector<LoadFailure>& failures)
{
    std::set<std::u16string> names;
    for (const LoadFailure& failure : failures)
        names.insert(failure.name);
    return names;
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
        const std::uint64_t written = last_write();
        const LoadedSettings loaded = LoadSettingsTolerantly();
        ASSERT_EQ(names_of(loaded.failures), key.unreadable());
        ASSERT_EQ(loaded.failures.size(), key.unreadable().size());
        if (key.unreadable().contains(u"language"))
            ASSERT_EQ(loaded.settings.language, defaults.language);
        if (key.unreadable().contains(u"sharedPorts"))
            ASSERT_EQ(loaded.settings.sharedPorts, defaults.sharedPorts);
        if (key.unreadable().empty())
            ASSERT_EQ(LoadSettings(), loaded.settings);
        else
            ASSERT_THROW(LoadSettings(), girder::nsm::details::load_exception);
        ASSERT_EQ(last_write(), written);
    }
}

} // namespace
