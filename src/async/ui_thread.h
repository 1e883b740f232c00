#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <vector>

namespace girder {

/// The thread that owns the windows, as seen by code on other threads: it runs posted callables, also while a modal
/// loop is active there.
///
/// A callable travels as a thread message. A message hook on that thread gives every message of this number to run();
/// only a message that carries one of this object's outstanding callables has an effect, so that another process,
/// which can post the same message, cannot make the program call an address of its choice.
class ui_thread {
public:
    /// Called once on the thread that owns the windows.
    /// \param message  number of the thread message, registered by the caller
    explicit ui_thread(UINT message) noexcept;
    ui_thread(const ui_thread&) = delete;
    ui_thread& operator=(const ui_thread&) = delete;
    /// Callables that have not run are destroyed without running.
    ~ui_thread() = default;

    bool is_current() const noexcept;

    /// Runs `callable` on the thread, from its next message retrieval. From any thread; an empty callable posts
    /// nothing. The callable must not throw: an exception that leaves it ends the process.
    /// \throws system_error when the message cannot be posted (the callable is destroyed)
    void post(std::function<void()> callable);

    /// For the message hook: runs the callable that the message carries and turns the message into WM_NULL. Any other
    /// message is left alone.
    void run(MSG& message) noexcept;

private:
    using posted = std::unique_ptr<std::function<void()>>;

    posted take(WPARAM carried) noexcept;

    UINT message_;
    DWORD thread_;
    SRWLOCK lock_ = SRWLOCK_INIT;
    std::vector<posted> outstanding_;
};

} // namespace girder
