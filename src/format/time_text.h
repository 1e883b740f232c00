#pragma once

#include "base/file_time.h"

#include <optional>
#include <string>
#include <string_view>

namespace fmtkit::details {

/// A point in time in local time by a strftime pattern, at most 40 characters of it. The program expands the
/// conversions itself, because the C runtime of Windows lacks most of those of C99 and writes a name for %z; those
/// whose text depends on the user's locale ask the system. E and O modifiers are ignored; an unknown conversion is
/// written as it stands.
/// \return empty when the time cannot be converted
std::optional<std::u16string> format_time(girder::file_time time, std::u16string_view pattern);

} // namespace fmtkit::details
