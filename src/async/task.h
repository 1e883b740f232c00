#pragma once

#include <coroutine>
#include <exception>
#include <optional>
#include <type_traits>
#include <utility>

namespace girder {

template <typename T = void>
class task;

namespace details {

class task_promise_base {
public:
    std::suspend_always initial_suspend() const noexcept { return {}; }
    void unhandled_exception() noexcept { error_ = std::current_exception(); }
    void continue_with(std::coroutine_handle<> awaiter) noexcept { awaiter_ = awaiter; }

    struct final_awaiter {
        bool await_ready() const noexcept { return false; }
        template <typename Promise>
        std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> finished) const noexcept
        {
            return finished.promise().awaiter_;
        }
        void await_resume() const noexcept {}
    };
    final_awaiter final_suspend() const noexcept { return {}; }

protected:
    void rethrow_error() const
    {
        if (error_)
            std::rethrow_exception(error_);
    }

private:
    std::coroutine_handle<> awaiter_ = std::noop_coroutine();
    std::exception_ptr error_;
};

template <typename T>
class task_promise : public task_promise_base {
public:
    task<T> get_return_object() noexcept;
    template <typename Value>
        requires std::is_constructible_v<T, Value>
    void return_value(Value&& value)
    {
        value_.emplace(std::forward<Value>(value));
    }
    T take()
    {
        rethrow_error();
        // An operation that has ended without an error has given a value.
        return std::move(*value_); // NOLINT(bugprone-unchecked-optional-access)
    }

private:
    std::optional<T> value_;
};

template <>
class task_promise<void> : public task_promise_base {
public:
    task<void> get_return_object() noexcept;
    void return_void() const noexcept {}
    void take() const { rethrow_error(); }
};

} // namespace details

/// A lazily started asynchronous operation that gives a T. Awaiting it starts it on the awaiting thread; when it ends,
/// on whichever thread that is, its awaiter continues there and receives the value or the exception. A chain of awaits
/// needs no stack: control passes by symmetric transfer.
///
/// Awaited at most once. Owns the coroutine: destroying the task destroys a coroutine that has not started, is
/// suspended or has ended. It must not be destroyed while it runs on another thread.
template <typename T>
class [[nodiscard]] task {
public:
    using promise_type = details::task_promise<T>;

    task(task&& other) noexcept : coroutine_(std::exchange(other.coroutine_, nullptr)) {}
    task& operator=(task&& other) noexcept
    {
        if (this != &other) {
            destroy();
            coroutine_ = std::exchange(other.coroutine_, nullptr);
        }
        return *this;
    }
    task(const task&) = delete;
    task& operator=(const task&) = delete;
    ~task() { destroy(); }

    auto operator co_await() && noexcept
    {
        struct awaiter {
            std::coroutine_handle<promise_type> operation;

            bool await_ready() const noexcept { return false; }
            std::coroutine_handle<> await_suspend(std::coroutine_handle<> awaiting) const noexcept
            {
                operation.promise().continue_with(awaiting);
                return operation;
            }
            T await_resume() const { return operation.promise().take(); }
        };
        return awaiter{coroutine_};
    }

private:
    friend promise_type;

    explicit task(std::coroutine_handle<promise_type> coroutine) noexcept : coroutine_(coroutine) {}

    void destroy() noexcept
    {
        if (coroutine_)
            coroutine_.destroy();
    }

    std::coroutine_handle<promise_type> coroutine_;
};

namespace details {

template <typename T>
task<T> task_promise<T>::get_return_object() noexcept
{
    return task<T>{std::coroutine_handle<task_promise>::from_promise(*this)};
}

inline task<void> task_promise<void>::get_return_object() noexcept
{
    return task<void>{std::coroutine_handle<task_promise>::from_promise(*this)};
}

} // namespace details
} // namespace girder
