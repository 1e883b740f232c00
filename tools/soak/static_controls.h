#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <future>
#include <thread>

namespace soak {

/// What stays taken of a process's heap for each static control with a text that was made, got a font and was destroyed
/// again, in bytes. Measured in this process, which must have the program's version of the common controls. Wine's
/// keeps 24 bytes, and as many of the heap's own, whatever the program does; Windows' keeps none.
std::size_t bytes_kept_for_a_static_control();

/// Counts the static controls with a text that a process makes, whatever for. It goes by events of the window system,
/// which come from another process with a little delay: one that lives for a few milliseconds may be missed.
class static_control_counter {
public:
    /// \throws girder::system_error when there are no such events to be had
    explicit static_control_counter(DWORD process);
    ~static_control_counter();
    static_control_counter(const static_control_counter&) = delete;
    static_control_counter& operator=(const static_control_counter&) = delete;

    std::size_t count() const { return count_; }

private:
    void listen(DWORD process, std::promise<DWORD> begun);

    std::atomic<std::size_t> count_ = 0;
    std::thread thread_;
    DWORD thread_id_ = 0;
};

} // namespace soak
