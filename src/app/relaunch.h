#pragma once

namespace tidelink {

/// Starts a new copy of the program with this process's unchanged command line; a failure is ignored.
void relaunch() noexcept;

} // namespace tidelink
