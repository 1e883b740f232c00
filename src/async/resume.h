#pragma once

#include "async/cancellation.h"
#include "async/ui_thread.h"

#include <windows.h>

#include <chrono>
#include <coroutine>
#include <memory>

// The four ways in which an operation lets go of its thread and continues later. Each is awaited at once, as in
// `co_await resume_after(1s, cancelled);`, and resumes exactly once. A cancellation that was requested shows when the
// operation resumes: as operation_cancelled. A request resumes an operation that waits for a delay or a signal at once.
//
// Destroying a suspended operation takes back what it waits for. That must not happen while the wait may end on another
// thread at the same time: cancel such an operation and let it end instead.

namespace girder {

/// Due times of thread-pool timers count in units of 100 ns.
using timer_ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;

namespace details {

class pool_timer;
class pool_wait;
class hand_off;

/// What the awaitables have in common. `Wait` does the waiting; it is shared with await_suspend(), which may still be
/// busy with it when the operation has already continued on another thread.
template <typename Wait>
class awaitable {
public:
    awaitable(const awaitable&) = delete;
    awaitable& operator=(const awaitable&) = delete;

protected:
    awaitable() noexcept = default;
    /// Takes back the wait.
    ~awaitable();

    std::shared_ptr<Wait> wait_;
};

} // namespace details

/// Waits on a one-shot thread-pool timer (CreateThreadpoolTimer); resumes on a pool thread.
/// \throws system_error when the timer cannot be created, operation_cancelled
class resume_after : details::awaitable<details::pool_timer> {
public:
    explicit resume_after(timer_ticks delay, cancellation cancelled = {}) noexcept;
    ~resume_after();

    bool await_ready() const noexcept { return cancelled_.requested(); }
    void await_suspend(std::coroutine_handle<> operation);
    void await_resume();

private:
    timer_ticks delay_;
    cancellation cancelled_;
};

/// Waits without a time limit until a process, event or other kernel object is signalled (CreateThreadpoolWait);
/// resumes on a pool thread. The handle stays the caller's, open meanwhile.
/// \throws system_error when the wait cannot be created, operation_cancelled
class resume_on_signal : details::awaitable<details::pool_wait> {
public:
    explicit resume_on_signal(HANDLE handle, cancellation cancelled = {}) noexcept;
    ~resume_on_signal();

    bool await_ready() const noexcept { return cancelled_.requested(); }
    void await_suspend(std::coroutine_handle<> operation);
    void await_resume();

private:
    HANDLE handle_;
    cancellation cancelled_;
};

/// Resumes on a pool thread as soon as one is free (TrySubmitThreadpoolCallback).
/// \throws system_error when the work cannot be submitted, operation_cancelled
class resume_background : details::awaitable<details::hand_off> {
public:
    explicit resume_background(cancellation cancelled = {}) noexcept;
    ~resume_background();

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> operation);
    void await_resume();

private:
    cancellation cancelled_;
};

/// Resumes on the user-interface thread; continues at once when already there.
/// \param thread  outlives the wait
/// \throws system_error when nothing can be posted to the thread, operation_cancelled
class resume_foreground : details::awaitable<details::hand_off> {
public:
    explicit resume_foreground(ui_thread& thread, cancellation cancelled = {}) noexcept;
    ~resume_foreground();

    bool await_ready() const noexcept { return thread_.is_current(); }
    void await_suspend(std::coroutine_handle<> operation);
    void await_resume();

private:
    ui_thread& thread_;
    cancellation cancelled_;
};

} // namespace girder
