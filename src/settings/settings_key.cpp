#include "settings/settings_key.h"

#include "format/format.h"
#include "format/literals.h"

namespace tidelink {
using namespace fmtkit::literals;

std::u16string SettingsKeyPath(const girder::product_version& version)
{
    return fmtkit::format(uR"(Software\Zelmark\Tidelink Server {}.{w2arf0})"_fmt, version.major, version.minor);
}

} // namespace tidelink
