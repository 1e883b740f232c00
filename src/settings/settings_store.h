#pragma once

#include "settings/server_settings.h"

#include <cstdint>
#include <string>
#include <vector>

// Where the settings live: a key of their own for each major and minor version of the product, below
// HKEY_LOCAL_MACHINE. Windows only; loading and saving run on the calling thread, one at a time.

namespace tidelink {

/// The key of the running program's product version; of version 0.0 in a program without one.
/// \throws girder::system_error
std::u16string SettingsKeyPath();

/// The stored settings, with the defaults of what is not stored. Creates the key when it is missing.
/// \throws girder::nsm::details::load_exception, girder::system_error
ServerSettings LoadSettings();

/// A stored value that could not be read, or the whole key.
struct LoadFailure {
    std::u16string name;    ///< of the value; empty for the key
    std::u16string text;    ///< of the error
    std::uint32_t code = 0; ///< Windows error code of a key that could not be opened, else 0
};

struct LoadedSettings {
    ServerSettings settings; ///< what could be read; the rest has its default
    std::vector<LoadFailure> failures;
};

/// Loads what can be read, whatever is stored.
/// \throws std::bad_alloc
LoadedSettings LoadSettingsTolerantly();

/// Replaces the stored settings by `settings`: deletes the key, writes what differs from the defaults, and signals a
/// running server. Not transacted: a failure part-way leaves a partial key.
/// \throws girder::system_error, girder::registry_ex::error_creating_key
void SaveSettings(const ServerSettings& settings);

} // namespace tidelink
