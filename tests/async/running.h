#pragma once

#include "async/cancellation.h"
#include "async/task.h"

#include <atomic>
#include <coroutine>
#include <exception>
#include <thread>
#include <utility>

namespace support {

/// A coroutine for tests that starts at once and is destroyed with this object, wherever it stands.
class running {
public:
    struct promise_type {
        running get_return_object() noexcept
        {
            return running(std::coroutine_handle<promise_type>::from_promise(*this));
        }
        std::suspend_never initial_suspend() const noexcept { return {}; }
        std::suspend_always final_suspend() const noexcept { return {}; }
        void return_void() const noexcept {}
        void unhandled_exception() const noexcept { std::terminate(); }
    };

    running(running&& other) noexcept : coroutine_(std::exchange(other.coroutine_, nullptr)) {}
    running& operator=(running&&) = delete;
    ~running()
    {
        if (coroutine_)
            coroutine_.destroy();
    }

private:
    explicit running(std::coroutine_handle<promise_type> coroutine) noexcept : coroutine_(coroutine) {}

    std::coroutine_handle<promise_type> coroutine_;
};

/// How an operation ended, for the thread that waits for it.
struct outcome {
    void wait() const { ended.wait(false); }

    std::atomic<bool> ended = false;
    bool cancelled = false;
    std::thread::id thread;
};

/// The last step of an operation: whoever sees the mark may destroy it.
struct mark_and_stay {
    std::atomic<bool>& mark;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<>) const noexcept
    {
        std::atomic<bool>& outlives_this = mark;
        outlives_this = true;
        outlives_this.notify_one();
    }
    void await_resume() const noexcept {}
};

inline running observe(girder::task<> operation, outcome& result)
{
    try {
        co_await std::move(operation);
    } catch (const girder::operation_cancelled&) {
        result.cancelled = true;
    }
    result.thread = std::this_thread::get_id();
    co_await mark_and_stay(result.ended);
}

} // namespace support
