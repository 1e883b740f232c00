#pragma once

#include <string_view>

namespace demo_server {

/// Appends one line, with the local time before it, to the file tl_server.log beside the executable. The file is closed
/// afterwards, so that others can read and remove it.
/// \throws girder::system_error
void log_line(std::u16string_view text);

} // namespace demo_server
