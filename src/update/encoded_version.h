#pragma once

#include "base/product_version.h"

#include <cstdint>

namespace tidelink {

// A version in one number: ((major * 100 + minor) * 100 + build) * 10000 + revision, e.g. 701001604 for 7.1.0.1604.

/// Modulo 2^32; a part that has more digits than its place runs over into the next higher part.
std::uint32_t encode(const girder::product_version& version) noexcept;

girder::product_version decode(std::uint32_t encoded) noexcept;

} // namespace tidelink
