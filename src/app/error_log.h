#pragma once

#include <exception>

namespace tidelink {

/// Writes an exception to the program's log: of a failed platform call the code, the system's text for it and the
/// call's name, of any other error its own text.
void log_error(const std::exception_ptr& error) noexcept;

} // namespace tidelink
