#include "async/resume.h"
#include "async/task.h"
#include "base/handles.h"
#include "base/win32_error.h"
#include "support/detached.h"
#include "support/handle_count.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

namespace {

using namespace std::chrono_literals;
using girder::cancellation;
using girder::operation_cancelled;
using girder::task;
using girder::unique_kernel_handle;
using support::running;

constexpr DWORD patience_ms = 10'000;
constexpr auto for_ever = 1h;

unique_kernel_handle make_event()
{
    return unique_kernel_handle{::CreateEventW(nullptr, TRUE, FALSE, nullptr)};
}

/// How an operation ended, for the thread that waits for it.
struct outcome {
    unique_kernel_handle done = make_event();
    DWORD thread = 0;
    bool cancelled = false;

    bool wait() const { return ::WaitForSingleObject(done.get(), patience_ms) == WAIT_OBJECT_0; }
};

/// The last step of an operation on another thread: whoever sees the event may destroy the suspended coroutine.
struct signal_and_stay {
    HANDLE event;

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<>) const noexcept { ::SetEvent(event); }
    void await_resume() const noexcept {}
};

running observe(task<> operation, outcome& result)
{
    try {
        co_await std::move(operation);
    } catch (const operation_cancelled&) {
        result.cancelled = true;
    }
    result.thread = ::GetCurrentThreadId();
    co_await signal_and_stay(result.done.get());
}

task<> delayed(girder::timer_ticks delay, cancellation cancelled)
{
    co_await girder::resume_after(delay, std::move(cancelled));
}

task<> signalled(HANDLE handle, cancellation cancelled)
{
    co_await girder::resume_on_signal(handle, std::move(cancelled));
}

TEST(resume_test, each_way_resumes_on_another_thread)
{
    const unique_kernel_handle event = make_event();
    ::SetEvent(event.get());
    const auto background = []() -> task<> { co_await girder::resume_background(); };
    const auto begin = std::chrono::steady_clock::now();
    task<> operations[] = {delayed(120ms, {}), signalled(event.get(), {}), background()};
    for (task<>& operation : operations) {
        outcome result;
        const running started = observe(std::move(operation), result);
        ASSERT_TRUE(result.wait());
        EXPECT_FALSE(result.cancelled);
        EXPECT_NE(result.thread, ::GetCurrentThreadId());
    }
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 110ms) << "a delay lasts at least as long as asked";
}

TEST(resume_test, cancelling_ends_a_wait_at_once_before_and_while_it_is_suspended)
{
    const unique_kernel_handle never = make_event();
    for (const bool cancel_first : {true, false}) {
        for (const bool timer : {true, false}) {
            std::stop_source source;
            if (cancel_first)
                source.request_stop();
            outcome result;
            const running started = observe(
                timer ? delayed(for_ever, source.get_token()) : signalled(never.get(), source.get_token()), result);
            source.request_stop();
            ASSERT_TRUE(result.wait()) << cancel_first << timer;
            EXPECT_TRUE(result.cancelled) << cancel_first << timer;
        }
    }
}

TEST(resume_test, a_change_of_thread_shows_a_cancellation_when_it_resumes)
{
    girder::ui_thread here(WM_APP + 8);
    const auto to_background = [](cancellation cancelled) -> task<> {
        co_await girder::resume_background(std::move(cancelled));
    };
    const auto to_foreground = [](girder::ui_thread& thread, cancellation cancelled) -> task<> {
        co_await girder::resume_foreground(thread, std::move(cancelled));
    };
    std::stop_source source;
    source.request_stop();
    task<> operations[] = {to_background(source.get_token()), to_foreground(here, source.get_token())};
    for (task<>& operation : operations) {
        outcome result;
        const running started = observe(std::move(operation), result);
        ASSERT_TRUE(result.wait());
        EXPECT_TRUE(result.cancelled);
    }
}

TEST(resume_test, cancelling_races_with_the_end_of_the_wait_and_resumes_once)
{
    for (int round = 0; round < 500; ++round) {
        std::stop_source source;
        outcome result;
        const running started = observe(delayed(std::chrono::microseconds(round % 50), source.get_token()), result);
        source.request_stop();
        ASSERT_TRUE(result.wait());
    }
}

TEST(resume_test, abandoning_a_suspended_wait_takes_it_back)
{
    const unique_kernel_handle event = make_event();
    const std::size_t handles_before = support::handle_count();
    for (int round = 0; round < 100; ++round) {
        outcome result;
        {
            const running timer = observe(delayed(for_ever, {}), result);
            const running wait = observe(signalled(event.get(), {}), result);
        }
        EXPECT_EQ(::WaitForSingleObject(result.done.get(), 0), DWORD{WAIT_TIMEOUT});
    }
    EXPECT_LE(support::handle_count(), handles_before + 8);
}

TEST(resume_test, errors_of_pool_threads_reach_the_user_interface_thread_unchanged)
{
    constexpr UINT message_number = WM_APP + 8;
    girder::ui_thread here(message_number);
    const auto failing = []() -> task<> {
        co_await girder::resume_background();
        girder::throw_win32(ERROR_ACCESS_DENIED, "OpenServiceW");
    };
    const auto run = [&failing](girder::ui_thread& back, std::uint32_t& code, bool& on_thread) -> running {
        std::exception_ptr error;
        try {
            task<> operation = failing();
            co_await std::move(operation);
        } catch (...) {
            error = std::current_exception();
        }
        co_await girder::resume_foreground(back);
        on_thread = back.is_current();
        try {
            std::rethrow_exception(error);
        } catch (const girder::system_error& failure) {
            code = failure.code();
        }
    };
    std::uint32_t code = 0;
    bool on_thread = false;
    const running started = run(here, code, on_thread);
    MSG message;
    ASSERT_TRUE(::GetMessageW(&message, nullptr, message_number, message_number));
    here.run(message);
    EXPECT_EQ(code, std::uint32_t{ERROR_ACCESS_DENIED});
    EXPECT_TRUE(on_thread);
}

TEST(resume_test, a_post_that_arrives_after_its_operation_was_abandoned_does_nothing)
{
    constexpr UINT message_number = WM_APP + 8;
    girder::ui_thread here(message_number);
    const auto run = [](girder::ui_thread& back) -> running {
        co_await girder::resume_background();
        co_await girder::resume_foreground(back);
        ADD_FAILURE() << "resumed after it was destroyed";
    };
    MSG message;
    {
        const running started = run(here);
        ASSERT_TRUE(::GetMessageW(&message, nullptr, message_number, message_number));
    }
    here.run(message);
    EXPECT_EQ(message.message, UINT{WM_NULL});
}

} // namespace
