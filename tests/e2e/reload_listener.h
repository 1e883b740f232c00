#pragma once

#include "base/handles.h"

#include <atomic>
#include <thread>

namespace e2e {

/// Stands where the server stands: owns the reload event while it lives, and counts how often it is set.
class reload_listener {
public:
    /// \throws girder::system_error, also when the event exists already
    reload_listener();
    reload_listener(const reload_listener&) = delete;
    reload_listener& operator=(const reload_listener&) = delete;
    ~reload_listener();

    /// Waits until the event was set `times` times since the construction. \return false when it was set more or less
    bool heard(int times) const;

private:
    void listen();

    girder::unique_kernel_handle reload_;
    girder::unique_kernel_handle stop_;
    std::atomic<int> signals_ = 0;
    std::thread thread_;
};

} // namespace e2e
