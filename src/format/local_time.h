#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>

// The operating system's side of formatting: the user's zone and locale.

namespace fmtkit::details {

/// Local time and its distance to UTC.
struct local_time {
    std::tm fields{};
    int offset_minutes = 0; ///< east of Greenwich, summer time included
    std::string zone_name;  ///< UTF-8
};

/// Empty for what the C runtime's _localtime64_s rejects: before 1970 or after the year 3000.
/// \param seconds  since 1970-01-01 UTC
std::optional<local_time> to_local_time(std::int64_t seconds);

/// One strftime conversion whose text depends on the user's locale: a A b B c p r x X.
std::u16string locale_time_text(char16_t conversion, const std::tm& fields);

/// Between groups of three digits in the user's locale; may be empty. Read once, then kept for the life of the process.
const std::u16string& thousands_separator();

} // namespace fmtkit::details
