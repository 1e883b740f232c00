#pragma once

#include "base/file_time.h"

#include <cstddef>
#include <string_view>

namespace fmtkit::details {

inline constexpr std::size_t longest_time_text = 40;

/// The longest text that a conversion writes without looking at the limit.
inline constexpr std::size_t longest_conversion = 24;

/// What write_time_text may write to, the end of it for a moment only.
inline constexpr std::size_t time_text_room = longest_time_text + longest_conversion;

/// Writes a point in time in local time by a strftime pattern, at most 40 characters of it. The program expands the
/// conversions itself, because the C runtime of Windows lacks most of those of C99 and writes a name for %z; those
/// whose text depends on the user's locale ask the system. E and O modifiers are ignored; an unknown conversion is
/// written as it stands.
/// \param out  time_text_room units
/// \return the end of what was written; null when the time cannot be converted
char16_t* write_time_text(char16_t* out, girder::file_time time, std::u16string_view pattern);
/// \param pattern  UTF-8
char16_t* write_time_text(char16_t* out, girder::file_time time, std::string_view pattern);

} // namespace fmtkit::details
