#pragma once

#include <exception>
#include <source_location>

namespace tidelink {

/// Writes an exception to the program's log: of a failed platform call the code, the system's text for it and the
/// call's name, of any other error its own text.
/// \param where  what the line names as the place
void log_error(const std::exception_ptr& error,
               const std::source_location& where = std::source_location::current()) noexcept;

} // namespace tidelink
