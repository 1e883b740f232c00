#pragma once

#include "async/byte_lock.h"
#include "async/cancellation.h"

#include <atomic>
#include <coroutine>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

// How a suspended operation continues on another thread exactly once, although more than one event may want it to, and
// although its frame may be destroyed instead. Of no interest outside of the awaitables.

namespace girder::details {

/// Continues an operation at most once, whoever asks first.
class continuation {
public:
    explicit continuation(std::coroutine_handle<> operation) noexcept : operation_(operation) {}

    /// \return whether the caller is the one to continue the operation, or to take its wait back
    bool claim() noexcept { return !claimed_.exchange(true); }
    void resume() const { operation_.resume(); }

private:
    std::coroutine_handle<> operation_;
    std::atomic<bool> claimed_ = false;
};

/// What travels to another thread instead of the operation itself, which may be gone when it arrives. Shared by both
/// sides.
class hand_off {
public:
    explicit hand_off(std::coroutine_handle<> operation) noexcept : continuation_(operation) {}

    /// On the other thread: continues the operation, unless it is gone.
    void arrive()
    {
        if (continuation_.claim())
            continuation_.resume();
    }

    /// The operation has resumed or is being destroyed.
    void close() noexcept { continuation_.claim(); }

private:
    continuation continuation_;
};

/// A wait that ends by itself or, at once, by a cancellation. `Event` is what is waited for, an object of the thread
/// pool:
///
///     using target = ...;                                          // the delay, the handle, ...
///     using call = ...;                                            // how the pool tells a call of on_end
///     Event(void (*on_end)(void* context, call), void* context);   // throws when there is none to be had
///     void start(target) noexcept;                                 // calls on_end on a pool thread, once
///     void end_now(target) noexcept;                               // the same at once; also after start()
///     static void detach(call) noexcept;                           // the destructor does not wait for this call
///     ~Event();                                                    // no call begins any more, none is under way
template <typename Event>
class cancellable_wait {
public:
    cancellable_wait(std::coroutine_handle<> operation, cancellation cancelled)
        : continuation_(operation), cancelled_(std::move(cancelled)), event_(std::make_unique<Event>(on_end, this))
    {}
    cancellable_wait(const cancellable_wait&) = delete;
    cancellable_wait& operator=(const cancellable_wait&) = delete;
    ~cancellable_wait() = default;

    void start(typename Event::target target)
    {
        // Registered before the start, so that no request is missed; one that comes first is kept for the start.
        on_cancel_.emplace(cancelled_, [this] { end_now(); });
        const std::lock_guard guard(lock_);
        target_ = target;
        if (cancel_requested_)
            event_->end_now(target);
        else
            event_->start(target);
    }

    /// Ends the wait: called by the operation when it has resumed, or by whoever destroys it before.
    void close() noexcept
    {
        {
            // The thread that suspended the operation may still be in start().
            const std::lock_guard guard(lock_);
        }
        on_cancel_.reset();
        continuation_.claim();
        event_.reset();
    }

private:
    static void on_end(void* self, typename Event::call call)
    {
        continuation& waiting = static_cast<cancellable_wait*>(self)->continuation_;
        if (!waiting.claim())
            return;
        // The operation destroys the event while this call runs.
        Event::detach(call);
        waiting.resume();
    }

    void end_now() noexcept
    {
        const std::lock_guard guard(lock_);
        cancel_requested_ = true;
        if (target_)
            event_->end_now(*target_);
    }

    continuation continuation_;
    byte_lock lock_; ///< suspending, cancelling and resuming happen on three threads
    std::optional<typename Event::target> target_;
    bool cancel_requested_ = false;
    cancellation cancelled_;
    std::unique_ptr<Event> event_;
    std::optional<cancellation_callback> on_cancel_;
};

} // namespace girder::details
