#pragma once

#include "async/cancellation.h"
#include "async/resume.h"
#include "async/task.h"
#include "async/ui_thread.h"

#include <windows.h>

#include <coroutine>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace tidelink {
namespace details {

/// Where an operation on other threads and the user-interface thread that waits for it meet. Shared by both: the
/// waiting side may leave first.
class operation_end {
public:
    operation_end() = default;
    operation_end(const operation_end&) = delete;
    operation_end& operator=(const operation_end&) = delete;
    ~operation_end() = default;

    /// On whichever thread the operation has ended, once. \param error  what it threw, null when nothing
    void tell(std::exception_ptr error) noexcept;

    /// Blocks half a second at most, then shows the wait dialog until the operation has ended. When the dialog cannot
    /// be shown or goes away before, as with its owner, the operation is asked to cancel and left to end by itself.
    /// \throws what the operation threw; operation_cancelled when it was left; what kept the dialog from being shown
    void await(HWND owner, girder::ui_thread& thread, const girder::cancellation_source& cancel);

    /// \param notice  called once, on the thread on which the operation ends, unless the end is told already
    /// \return whether the end is still to come
    bool call_at_end(std::function<void()> notice);
    /// From now on the notice is neither called nor being called.
    void do_not_call() noexcept;
    bool told() noexcept;
    /// What the operation threw, once its end is told; null when nothing.
    const std::exception_ptr& error() const noexcept { return error_; }
    /// Blocks half a second at most. \return whether the end is told
    bool wait_briefly() noexcept;

private:
    SRWLOCK lock_ = SRWLOCK_INIT;
    CONDITION_VARIABLE ended_ = CONDITION_VARIABLE_INIT;
    bool told_ = false;
    std::exception_ptr error_;
    std::function<void()> notice_;
};

template <typename T>
struct operation_result : operation_end {
    std::optional<T> value; ///< set before the end is told without an error

    /// What the operation gave, once; its end was told without an error.
    T take() { return std::move(*value); } // NOLINT(bugprone-unchecked-optional-access)
};
template <>
struct operation_result<void> : operation_end {};

/// A coroutine that nobody waits for and that frees itself at its end: the operation outlives a window that is closed
/// while a call blocks, which no cancellation can end.
struct unowned {
    struct promise_type {
        unowned get_return_object() const noexcept { return {}; }
        std::suspend_never initial_suspend() const noexcept { return {}; }
        std::suspend_never final_suspend() const noexcept { return {}; }
        void return_void() const noexcept {}
        void unhandled_exception() const noexcept { std::terminate(); }
    };
};

template <typename T>
unowned run(std::shared_ptr<operation_result<T>> result, girder::task<T> operation)
{
    std::exception_ptr error;
    try {
        co_await girder::resume_background();
        // What the operation owns is gone when its end is told.
        girder::task<T> owned = std::move(operation);
        if constexpr (std::is_void_v<T>) {
            co_await std::move(owned);
        } else {
            T value = co_await std::move(owned);
            result->value.emplace(std::move(value));
        }
    } catch (...) {
        error = std::current_exception();
    }
    result->tell(std::move(error));
}

} // namespace details

/// Runs an operation on the thread pool and returns its result, on the user-interface thread, which it blocks for up to
/// half a second and then in the modal loop of the dialog "Please Wait"; so nothing is seen of an operation that is
/// quick. Esc asks the operation to cancel, and the dialog goes when it has.
///
/// When the owner is destroyed meanwhile, the call returns at once, and what it leaves behind touches neither window
/// nor thread.
/// \param cancel     what cancels the operation; its token was given to it
/// \param operation  not started; it never resumes on the user-interface thread, and refers to nothing of the caller
/// \throws what the operation throws; girder::operation_cancelled when it was cancelled or left behind
template <typename T>
T RunWithWaitDialog(HWND owner, girder::ui_thread& thread, const girder::cancellation_source& cancel,
                    girder::task<T> operation)
{
    const auto result = std::make_shared<details::operation_result<T>>();
    details::run(result, std::move(operation));
    result->await(owner, thread, cancel);
    if constexpr (!std::is_void_v<T>)
        return result->take();
}

} // namespace tidelink
