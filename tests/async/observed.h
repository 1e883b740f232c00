#pragma once

#include "async/task.h"
#include "support/detached.h"

#include <atomic>
#include <chrono>
#include <coroutine>
#include <thread>
#include <utility>

namespace support {

/// How an operation ended, for the thread that waits for it.
struct outcome {
    std::atomic<bool> ended = false;
    bool was_cancelled = false;

    /// \return false when it does not end
    bool wait() const
    {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!ended && std::chrono::steady_clock::now() < deadline)
            std::this_thread::yield();
        return ended;
    }
};

/// The last step of an operation: whoever sees the mark may destroy it.
struct mark_and_stay {
    std::atomic<bool>& mark;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<>) const noexcept { mark = true; }
    void await_resume() const noexcept {}
};

inline running observe(girder::task<> operation, outcome& result)
{
    try {
        co_await std::move(operation);
    } catch (const girder::operation_cancelled&) {
        result.was_cancelled = true;
    }
    co_await mark_and_stay(result.ended);
}

} // namespace support
