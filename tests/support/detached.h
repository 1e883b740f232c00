#pragma once

#include <coroutine>
#include <exception>
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

} // namespace support
