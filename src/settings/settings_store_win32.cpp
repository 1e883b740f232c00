#include "base/product_version.h"
#include "base/system_error.h"
#include "base/utf.h"
#include "base/wide.h"
#include "registry/key_store.h"
#include "serialisation/load_exception.h"
#include "service/reload_event.h"
#include "settings/settings_key.h"
#include "settings/settings_store.h"

#include <windows.h>

namespace tidelink {
namespace {

using girder::registry_ex::RegistryKeyStore;

RegistryKeyStore store_for_loading()
{
    return RegistryKeyStore(HKEY_LOCAL_MACHINE, SettingsKeyPath(), {.delete_on_null = false});
}

} // namespace

std::u16string SettingsKeyPath()
{
    return SettingsKeyPath(girder::read_product_version());
}

ServerSettings LoadSettings()
{
    ServerSettings settings = DefaultServerSettings();
    RegistryKeyStore store = store_for_loading();
    Read(store.open_for_reading(), settings);
    return settings;
}

LoadedSettings LoadSettingsTolerantly()
{
    LoadedSettings loaded{.settings = DefaultServerSettings(), .failures = {}};
    try {
        RegistryKeyStore store = store_for_loading();
        ReadTolerantly(store.open_for_reading(), loaded.settings,
                       [&loaded](std::string_view name, const girder::nsm::details::load_exception& error) {
                           loaded.failures.push_back({.name = girder::to_utf16(name), .text = error.message()});
                       });
    } catch (const girder::system_error& error) {
        loaded.failures.push_back({.name = {}, .text = girder::to_utf16(error.what()), .code = error.code()});
    } catch (const girder::nsm::details::load_exception& error) {
        loaded.failures.push_back({.name = {}, .text = error.message()});
    }
    return loaded;
}

void SaveSettings(const ServerSettings& settings)
{
    const std::u16string path = SettingsKeyPath();
    // A missing key is normal.
    static_cast<void>(::RegDeleteTreeW(HKEY_LOCAL_MACHINE, girder::as_wide(path)));
    {
        RegistryKeyStore store(HKEY_LOCAL_MACHINE, path, {.delete_on_null = true});
        const auto writer = store.open_for_writing();
        WriteChanged(settings, DefaultServerSettings(), *writer);
    }
    signal_reload();
}

} // namespace tidelink
