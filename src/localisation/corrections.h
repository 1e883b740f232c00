#pragma once

#include "base/file_time.h"
#include "localisation/string_table.h"

#include <string>
#include <string_view>

namespace tidelink {

/// The fixed bytes before and behind the modules of a file of corrections: UTF-8 without byte order mark, lines that
/// end with CR LF.
inline constexpr std::string_view corrections_header =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<Corrections>\r\n";
inline constexpr std::string_view corrections_trailer = "</Corrections>\r\n";

/// The element of one module, in UTF-8. In keys and texts a quote becomes `&quot;`, then CR, LF and tab become `\r`,
/// `\n` and `\t`, and last an ampersand `&amp;`, so that a quote ends up as `&amp;quot;`. Angle brackets and
/// backslashes stay as they are.
/// \param module  a folder in front of a backslash is left out
std::string corrections_module(std::u16string_view module, const Corrections& corrections);

/// The name of a module's file, such as "tl_server_config.exe.20250625-143000.xml" for that local time.
std::u16string corrections_file_name(std::u16string_view module, girder::file_time now);

/// Writes the corrections of a table into a file named after the module and the present local time, over an older file
/// of that name. Nothing when the table is not in the corrections mode or has no corrections, and nothing that can be
/// told after a failure: the program is about to end. Windows only.
void export_corrections(const StringTable& table, std::u16string_view module, std::u16string_view folder) noexcept;

} // namespace tidelink
