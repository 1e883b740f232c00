#pragma once

#include "format/argument.h"
#include "format/compiled_format.h"
#include "format/time_text.h"

#include <cstddef>
#include <string_view>

// One item of a format written to memory that the caller has measured.

namespace fmtkit::details {

template <typename Char>
constexpr auto own_text = sizeof(Char) == 1 ? argument::kind::narrow_text : argument::kind::wide_text;

/// Units that are enough for write_argument, found without looking into the text. It may be more than is written.
template <typename Char>
std::size_t quick_room(const FormatItem& item, const argument& value) noexcept;

/// The same, and no more than are written or, for what is cut after it was written, than are written before the cut.
/// Only a time has the room of the longest: what it writes depends on more than its argument.
template <typename Char>
std::size_t exact_room(const FormatItem& item, const argument& value);

/// Writes an argument by the rules of a specifier that is no condition.
/// \param format  the format text, where the patterns of time items stand
/// \return the end of what was written
template <typename Char>
Char* write_argument(Char* out, std::basic_string_view<Char> format, const FormatItem& item, const argument& value);

/// Units that are enough for a time without its width.
template <typename Char>
inline constexpr std::size_t time_room = sizeof(Char) == 1 ? 3 * longest_time_text : time_text_room;

/// Writes an argument that is a time, without the width rules.
/// \return null when nothing is to be written, not even padding
template <typename Char>
Char* write_time(Char* out, std::basic_string_view<Char> format, const FormatItem& item, girder::file_time time);

/// Writes a literal with escaped braces, at most its own length.
template <typename Char>
Char* write_escaped(Char* out, std::basic_string_view<Char> literal) noexcept;

} // namespace fmtkit::details
