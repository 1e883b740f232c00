#pragma once

#include "base/file_time.h"

#include <optional>
#include <string_view>

namespace girder::nsm {

/// Parses "%FT%T%z", e.g. 2025-06-25T14:03:09+0100, or "%FT%T", which is taken as UTC. Whole seconds, the Gregorian
/// calendar, years 1601 to 9999. Empty when the text is neither.
std::optional<file_time> parse_date(std::u16string_view text);

} // namespace girder::nsm
