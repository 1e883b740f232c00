#pragma once

#include "base/product_version.h"

#include <string>

namespace tidelink {

/// Where the settings of that version of the product live below HKEY_LOCAL_MACHINE: each major and minor version has a
/// key of its own, e.g. "Software\Zelmark\Tidelink Server 7.01".
std::u16string SettingsKeyPath(const girder::product_version& version);

} // namespace tidelink
