#include "async/resume.h"

#include "async/continuation.h"
#include "base/unique_handle.h"
#include "base/win32_error.h"

#include <utility>

namespace girder {
namespace details {
namespace {

FILETIME relative_due_time(timer_ticks delay) noexcept
{
    const auto due = static_cast<std::uint64_t>(-delay.count());
    return {.dwLowDateTime = static_cast<DWORD>(due), .dwHighDateTime = static_cast<DWORD>(due >> 32)};
}

/// How the operation that waits for an event is told of it.
struct listener {
    void (*on_end)(void* context, PTP_CALLBACK_INSTANCE call);
    void* context;
};

struct timer_traits {
    using raw_type = PTP_TIMER;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type timer) noexcept
    {
        ::SetThreadpoolTimer(timer, nullptr, 0, 0);
        ::WaitForThreadpoolTimerCallbacks(timer, TRUE);
        ::CloseThreadpoolTimer(timer);
    }
};

struct wait_traits {
    using raw_type = PTP_WAIT;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type wait) noexcept
    {
        ::SetThreadpoolWait(wait, nullptr, nullptr);
        ::WaitForThreadpoolWaitCallbacks(wait, TRUE);
        ::CloseThreadpoolWait(wait);
    }
};

void tell(PTP_CALLBACK_INSTANCE call, void* context)
{
    const auto& waiting = *static_cast<const listener*>(context);
    waiting.on_end(waiting.context, call);
}

} // namespace

/// A one-shot timer.
class timer_event {
public:
    using target = timer_ticks;
    using call = PTP_CALLBACK_INSTANCE;

    timer_event(void (*on_end)(void*, call), void* context)
        : listener_{.on_end = on_end, .context = context},
          timer_(
              ::CreateThreadpoolTimer([](call each, void* self, PTP_TIMER) { tell(each, self); }, &listener_, nullptr))
    {
        if (!timer_)
            throw_last_error("CreateThreadpoolTimer");
    }

    void start(timer_ticks delay) noexcept
    {
        FILETIME due = relative_due_time(delay);
        ::SetThreadpoolTimer(timer_.get(), &due, 0, 0);
    }
    void end_now(timer_ticks) noexcept { start(timer_ticks{0}); }
    static void detach(call call) noexcept { ::DisassociateCurrentThreadFromCallback(call); }

private:
    listener listener_;
    unique_handle<timer_traits> timer_;
};

/// A kernel object that gets signalled.
class signal_event {
public:
    using target = HANDLE;
    using call = PTP_CALLBACK_INSTANCE;

    signal_event(void (*on_end)(void*, call), void* context)
        : listener_{.on_end = on_end, .context = context},
          wait_(::CreateThreadpoolWait([](call each, void* self, PTP_WAIT, TP_WAIT_RESULT) { tell(each, self); },
                                       &listener_, nullptr))
    {
        if (!wait_)
            throw_last_error("CreateThreadpoolWait");
    }

    void start(HANDLE handle) noexcept { ::SetThreadpoolWait(wait_.get(), handle, nullptr); }
    void end_now(HANDLE handle) noexcept
    {
        FILETIME at_once{};
        ::SetThreadpoolWait(wait_.get(), handle, &at_once);
    }
    static void detach(call call) noexcept { ::DisassociateCurrentThreadFromCallback(call); }

private:
    listener listener_;
    unique_handle<wait_traits> wait_;
};

class pool_timer : public cancellable_wait<timer_event> {
    using cancellable_wait::cancellable_wait;
};

class pool_wait : public cancellable_wait<signal_event> {
    using cancellable_wait::cancellable_wait;
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

resume_background::resume_background(cancellation cancelled) noexcept : cancelled_(std::move(cancelled))
{}

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

void resume_background::await_resume()
{
    throw_if_cancelled(cancelled_);
}

resume_foreground::resume_foreground(ui_thread& thread, cancellation cancelled) noexcept
    : thread_(thread), cancelled_(std::move(cancelled))
{}

resume_foreground::~resume_foreground() = default;

void resume_foreground::await_suspend(std::coroutine_handle<> operation)
{
    wait_ = std::make_shared<details::hand_off>(operation);
    thread_.post([travelling = wait_] { travelling->arrive(); });
}

void resume_foreground::await_resume()
{
    throw_if_cancelled(cancelled_);
}

} // namespace girder
