#pragma once

#include "async/byte_lock.h"

#include <atomic>
#include <exception>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

// How operations are asked to end. Not std::stop_token: in libstdc++ 12 for Windows the destructor of a stop_callback
// can sleep for ever, because the semaphore there looks whether the callback has ended before it takes the lock that it
// is woken under.

namespace girder {

/// Raised in an operation at the first resumption after its cancellation was requested.
class operation_cancelled : public std::exception {
public:
    const char* what() const noexcept override { return "operation cancelled"; }
};

namespace details {

/// Shared by a source, what it has given to operations, and their callbacks.
class cancellation_state {
public:
    using callback = std::function<void()>;

    bool requested() const noexcept { return requested_; }
    /// Calls the callbacks, the first time.
    void request();
    /// Calls back at once where the request was before.
    /// \param called  outlives its registration
    void add(const callback& called);
    /// When it returns, the callback is neither called nor being called any more.
    void remove(const callback& called) noexcept;

private:
    byte_lock lock_; ///< held while callbacks run
    std::atomic<bool> requested_ = false;
    std::vector<const callback*> callbacks_;
};

} // namespace details

/// What an operation looks at to learn that it shall end. A default-constructed one is never requested.
class cancellation {
public:
    cancellation() noexcept = default;
    explicit cancellation(std::shared_ptr<details::cancellation_state> state) noexcept : state_(std::move(state)) {}

    bool requested() const noexcept { return state_ && state_->requested(); }

private:
    friend class cancellation_callback;

    std::shared_ptr<details::cancellation_state> state_;
};

/// Asks operations to end. Its copies ask the same ones. Any thread.
class cancellation_source {
public:
    cancellation get() const noexcept { return cancellation(state_); }
    /// Returns when all callbacks have been called. Requests after the first do nothing.
    void request() const { state_->request(); }

private:
    std::shared_ptr<details::cancellation_state> state_ = std::make_shared<details::cancellation_state>();
};

/// Calls back once when a cancellation is requested, at once where that was before.
class cancellation_callback {
public:
    /// \param callback  does not throw, and neither requests nor has other callbacks of the same source
    cancellation_callback(cancellation cancelled, std::function<void()> callback);
    cancellation_callback(const cancellation_callback&) = delete;
    cancellation_callback& operator=(const cancellation_callback&) = delete;
    /// From now on the callback is neither called nor being called.
    ~cancellation_callback();

private:
    cancellation cancelled_;
    std::function<void()> callback_;
};

/// \throws operation_cancelled
inline void throw_if_cancelled(const cancellation& cancelled)
{
    if (cancelled.requested())
        throw operation_cancelled();
}

} // namespace girder
