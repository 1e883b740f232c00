#include "async/resume.h"

#include "async/srw_lock.h"
#include "base/unique_handle.h"
#include "base/win32_error.h"

#include <atomic>
#include <functional>
#include <optional>
#include <utility>

namespace girder {
namespace details {
namespace {

/// Resumes an operation at most once, whoever asks first.
class single_resumption {
public:
    explicit single_resumption(std::coroutine_handle<> operation) noexcept : operation_(operation) {}

    /// \return whether the caller is the one to resume the operation, or to take its wait back
    bool claim() noexcept { return !claimed_.exchange(true); }
    void resume() const { operation_.resume(); }

private:
    std::coroutine_handle<> operation_;
    std::atomic<bool> claimed_ = false;
};

FILETIME relative_due_time(timer_ticks delay) noexcept
{
    const auto due = static_cast<std::uint64_t>(-delay.count());
    return {.dwLowDateTime = static_cast<DWORD>(due), .dwHighDateTime = static_cast<DWORD>(due >> 32)};
}

struct timer_functions {
    using raw_type = PTP_TIMER;
    using callback = PTP_TIMER_CALLBACK;
    using target = timer_ticks;

    static constexpr raw_type empty() noexcept { return nullptr; }

    static raw_type create(callback on_end, void* context)
    {
        const raw_type timer = ::CreateThreadpoolTimer(on_end, context, nullptr);
        if (!timer)
            throw_last_error("CreateThreadpoolTimer");
        return timer;
    }

    static void start(raw_type timer, target delay) noexcept
    {
        FILETIME due = relative_due_time(delay);
        ::SetThreadpoolTimer(timer, &due, 0, 0);
    }

    static void end_now(raw_type timer, target) noexcept { start(timer, timer_ticks{0}); }

    static void close(raw_type timer) noexcept
    {
        ::SetThreadpoolTimer(timer, nullptr, 0, 0);
        ::WaitForThreadpoolTimerCallbacks(timer, TRUE);
        ::CloseThreadpoolTimer(timer);
    }
};

struct wait_functions {
    using raw_type = PTP_WAIT;
    using callback = PTP_WAIT_CALLBACK;
    using target = HANDLE;

    static constexpr raw_type empty() noexcept { return nullptr; }

    static raw_type create(callback on_end, void* context)
    {
        const raw_type wait = ::CreateThreadpoolWait(on_end, context, nullptr);
        if (!wait)
            throw_last_error("CreateThreadpoolWait");
        return wait;
    }

    static void start(raw_type wait, target handle) noexcept { ::SetThreadpoolWait(wait, handle, nullptr); }

    static void end_now(raw_type wait, target handle) noexcept
    {
        FILETIME at_once{};
        ::SetThreadpoolWait(wait, handle, &at_once);
    }

    static void close(raw_type wait) noexcept
    {
        ::SetThreadpoolWait(wait, nullptr, nullptr);
        ::WaitForThreadpoolWaitCallbacks(wait, TRUE);
        ::CloseThreadpoolWait(wait);
    }
};

} // namespace

/// A wait of the thread pool that ends by itself or, at once, by a cancellation. `Pool` names the pool's functions.
template <typename Pool>
class pool_object {
public:
    pool_object(std::coroutine_handle<> operation, cancellation cancelled)
        : resumption_(operation), object_(Pool::create(callback(), this)), cancelled_(std::move(cancelled))
    {}

    void start(typename Pool::target target)
    {
        // Registered before the start, so that no request is missed; one that comes first is kept for the start.
        on_cancel_.emplace(cancelled_, [this] { end_now(); });
        const exclusive_lock guard(lock_);
        target_ = target;
        if (cancel_requested_)
            Pool::end_now(object_.get(), target);
        else
            Pool::start(object_.get(), target);
    }

    /// Ends the wait: called by the operation when it has resumed, or by whoever destroys it before.
    void close() noexcept
    {
        {
            // The thread that suspended the operation may still be in start().
            const exclusive_lock guard(lock_);
        }
        on_cancel_.reset();
        resumption_.claim();
        object_.reset();
    }

private:
    static typename Pool::callback callback() noexcept
    {
        if constexpr (std::is_same_v<Pool, timer_functions>)
            return [](PTP_CALLBACK_INSTANCE instance, void* self, PTP_TIMER) { on_end(instance, self); };
        else
            return [](PTP_CALLBACK_INSTANCE instance, void* self, PTP_WAIT, TP_WAIT_RESULT) { on_end(instance, self); };
    }

    static void on_end(PTP_CALLBACK_INSTANCE instance, void* self) noexcept
    {
        single_resumption& resumption = static_cast<pool_object*>(self)->resumption_;
        if (!resumption.claim())
            return;
        // The operation closes the object while this callback runs, and closing waits for the object's callbacks.
        ::DisassociateCurrentThreadFromCallback(instance);
        resumption.resume();
    }

    void end_now() noexcept
    {
        const exclusive_lock guard(lock_);
        cancel_requested_ = true;
        if (target_)
            Pool::end_now(object_.get(), *target_);
    }

    single_resumption resumption_;
    SRWLOCK lock_ = SRWLOCK_INIT;
    unique_handle<Pool> object_;
    std::optional<typename Pool::target> target_;
    bool cancel_requested_ = false;
    cancellation cancelled_;
    std::optional<std::stop_callback<std::function<void()>>> on_cancel_;
};

class pool_timer : public pool_object<timer_functions> {
    using pool_object::pool_object;
};

class pool_wait : public pool_object<wait_functions> {
    using pool_object::pool_object;
};

/// What travels to another thread instead of the operation itself, which may be gone when it arrives.
class hand_off {
public:
    explicit hand_off(std::coroutine_handle<> operation) noexcept : resumption_(operation) {}

    void arrive()
    {
        if (resumption_.claim())
            resumption_.resume();
    }

    void close() noexcept { resumption_.claim(); }

private:
    single_resumption resumption_;
};

template <typename Wait>
awaitable<Wait>::~awaitable()
{
    if (wait_)
        wait_->close();
}

} // namespace details

// A suspended operation can continue, and its awaitable be gone, before await_suspend() returns: from the start on,
// only the local reference to the wait is used.

resume_after::resume_after(timer_ticks delay, cancellation cancelled) noexcept
    : delay_(delay), cancelled_(std::move(cancelled))
{}

resume_after::~resume_after() = default;

void resume_after::await_suspend(std::coroutine_handle<> operation)
{
    const auto wait = std::make_shared<details::pool_timer>(operation, cancelled_);
    wait_ = wait;
    wait->start(delay_);
}

void resume_after::await_resume()
{
    throw_if_cancelled(cancelled_);
}

resume_on_signal::resume_on_signal(HANDLE handle, cancellation cancelled) noexcept
    : handle_(handle), cancelled_(std::move(cancelled))
{}

resume_on_signal::~resume_on_signal() = default;

void resume_on_signal::await_suspend(std::coroutine_handle<> operation)
{
    const auto wait = std::make_shared<details::pool_wait>(operation, cancelled_);
    wait_ = wait;
    wait->start(handle_);
}

void resume_on_signal::await_resume()
{
    throw_if_cancelled(cancelled_);
}

resume_background::resume_background() noexcept = default;
resume_background::~resume_background() = default;

void resume_background::await_suspend(std::coroutine_handle<> operation)
{
    using shared_hand_off = std::shared_ptr<details::hand_off>;
    wait_ = std::make_shared<details::hand_off>(operation);
    auto travelling = std::make_unique<shared_hand_off>(wait_);
    const auto arrive = [](PTP_CALLBACK_INSTANCE, void* carried) {
        const std::unique_ptr<shared_hand_off> owner(static_cast<shared_hand_off*>(carried));
        (*owner)->arrive();
    };
    if (!::TrySubmitThreadpoolCallback(arrive, travelling.get(), nullptr))
        throw_last_error("TrySubmitThreadpoolCallback");
    // The callback owns it from here on.
    [[maybe_unused]] const shared_hand_off* const carried = travelling.release();
}

resume_foreground::resume_foreground(ui_thread& thread) noexcept : thread_(thread)
{}
resume_foreground::~resume_foreground() = default;

void resume_foreground::await_suspend(std::coroutine_handle<> operation)
{
    wait_ = std::make_shared<details::hand_off>(operation);
    thread_.post([travelling = wait_] { travelling->arrive(); });
}

} // namespace girder
