#pragma once

#include <cstdint>

namespace girder {

/// The four numbers of a version, as the fixed block of a version resource holds them.
struct product_version {
    std::uint16_t major = 0;
    std::uint16_t minor = 0;
    std::uint16_t build = 0;
    std::uint16_t revision = 0;

    bool operator==(const product_version&) const = default;
};

/// The product version in the version resource (id 1) of the running program; all 0 when the resource or its fixed
/// block is missing. Windows only.
/// \throws system_error when version.dll cannot be loaded
product_version read_product_version();

/// The same for the file version, which the About box shows.
product_version read_file_version();

} // namespace girder
