#pragma once

#include "base/handles.h"

namespace tidelink {

/// A machine-wide named mutex that exists while the utility runs; installers and the service look for it. Processes of
/// every user and session may open it. Nothing depends on it having been created: it never decides about a start.
class running_marker {
public:
    static constexpr const wchar_t* name = L"Global\\Zelmarkco_TIDELINK_SERVER__Running_Mutex";

    /// A failure to create the mutex is ignored.
    /// \throws girder::system_error when its security descriptor cannot be built (E_OUTOFMEMORY when there is no memory
    /// for its block)
    running_marker();

private:
    // Declared in this order, so that the mutex is closed before its descriptor is freed.
    girder::unique_local_memory descriptor_;
    girder::unique_kernel_handle mutex_;
};

} // namespace tidelink
