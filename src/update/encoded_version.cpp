#include "update/encoded_version.h"

namespace tidelink {

std::uint32_t encode(const girder::product_version& version) noexcept
{
    return ((std::uint32_t{version.major} * 100 + version.minor) * 100 + version.build) * 10000 + version.revision;
}

girder::product_version decode(std::uint32_t encoded) noexcept
{
    return {.major = static_cast<std::uint16_t>(encoded / 100'000'000),
            .minor = static_cast<std::uint16_t>(encoded / 10'000 / 100 % 100),
            .build = static_cast<std::uint16_t>(encoded / 10'000 % 100),
            .revision = static_cast<std::uint16_t>(encoded % 10'000)};
}

} // namespace tidelink
