#pragma once

#include <windows.h>

#include <chrono>
#include <mutex>
#include <thread>

namespace ui_driver {

/// Sends a window of another process one message after the other, from a thread of its own, to see how long it takes to
/// answer.
class round_trips {
public:
    using clock = std::chrono::steady_clock;

    explicit round_trips(HWND window) : thread_([this, window](const std::stop_token& stop) { watch(window, stop); }) {}

    /// Forgets what was. A trip that is under way counts from here.
    /// \param aside  how long nothing counts yet
    void begin(clock::duration aside = {});
    /// Counts nothing for so long from now on. What was counted stays.
    void pause(clock::duration aside);

    /// The longest trip since begin(), that under way included: waits for its end, at most `patience`.
    clock::duration longest() const;

private:
    void watch(HWND window, const std::stop_token& stop);

    mutable std::mutex lock_;
    clock::time_point counted_from_ = clock::now();
    clock::time_point last_begin_;
    clock::duration longest_{};
    std::jthread thread_;
};

} // namespace ui_driver
