#pragma once

#include <string>
#include <string_view>

namespace girder::json {

/// Appends `text` with a backslash before quotes and backslashes, and \t, \n and \r for those; all else as it is.
void append_escaped(std::string& out, std::string_view text);

/// What stands between the quotes of a JSON text, resolved.
struct resolved_text {
    std::u16string text;
    const char* malformed = nullptr; ///< the backslash of an escape that there is not
};
resolved_text resolve_escapes(std::string_view raw);

} // namespace girder::json
