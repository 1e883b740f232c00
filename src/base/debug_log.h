#pragma once

#include <cstdint>
#include <source_location>
#include <string>
#include <string_view>

namespace girder {

/// What is known about a failure when it is logged. The views need to live for the call only.
struct failure {
    std::uint32_t code = 0;           ///< Windows error code or HRESULT, 0 when there is none
    std::u16string_view text = {};    ///< the system's text for the code
    std::u16string_view message = {}; ///< what the program was doing, or the error's own text
    std::string_view context = {};    ///< name of the failing call
};

/// The debugger line of a failure: "file(line) tid(thread) CODE text", followed by "Msg:[...]" and "CallContext:[...]"
/// where there is one; code and thread in hexadecimal, the file without its folders. Ends with a line feed.
std::u16string failure_line(const failure& what, std::uint32_t thread, const std::source_location& where);

/// Writes the line to the debugger output (OutputDebugStringW), the program's only log. Windows only; never throws:
/// where memory runs out, nothing is logged.
void log_failure(const failure& what, const std::source_location& where = std::source_location::current()) noexcept;

} // namespace girder
