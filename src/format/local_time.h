#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <span>
#include <string_view>

// The operating system's side of formatting: the user's zone and locale.

namespace fmtkit::details {

/// The end of what _localtime64_s of the C runtime converts, the last second of the year 3000 in UTC. It begins at 0.
inline constexpr std::int64_t last_local_second = 32'535'215'999;

/// Local time with the zone's summer time.
/// \param seconds  since 1970-01-01 UTC
/// \return false before 1970 and after last_local_second
bool to_local_time(std::int64_t seconds, std::tm& local);

inline constexpr std::size_t longest_system_text = 128;

/// Writes one strftime conversion whose text the system knows: a A b B c h p r x X in the user's locale, and Z, the
/// zone's name.
/// \return its length; 0 where the system has none
std::size_t write_system_text(std::span<char16_t, longest_system_text> out, char16_t conversion, const std::tm& local);

/// Between groups of three digits in the user's locale; may be empty. Read once, then kept for the life of the process.
std::u16string_view thousands_separator();

} // namespace fmtkit::details
