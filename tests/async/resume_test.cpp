#include "async/resume.h"
#include "async/task.h"
#include "base/handles.h"
#include "support/detached.h"
#include "support/handle_count.h"

#include <gtest/gtest.h>

#include <chrono>
#include <vector>

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

task<> on_a_pool_thread(cancellation cancelled)
{
    co_await girder::resume_background(std::move(cancelled));
}

task<> on_thread(girder::ui_thread& thread, cancellation cancelled)
{
    co_await girder::resume_foreground(thread, std::move(cancelled));
}

TEST(resume_test, each_way_resumes_on_another_thread)
{
    const unique_kernel_handle event = make_event();
    ::SetEvent(event.get());
    const auto begin = std::chrono::steady_clock::now();
    task<> operations[] = {delayed(120ms, {}), signalled(event.get(), {}), on_a_pool_thread({})};
    for (task<>& operation : operations) {
        outcome result;
        const running started = observe(std::move(operation), result);
        ASSERT_TRUE(result.wait());
        EXPECT_FALSE(result.cancelled);
        EXPECT_NE(result.thread, ::GetCurrentThreadId());
    }
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 110ms) << "a delay lasts at least as long as asked";
}

TEST(resume_test, cancelling_shows_at_once_before_and_while_an_operation_is_suspended)
{
    girder::ui_thread here(WM_APP + 8);
    const unique_kernel_handle never = make_event();
    for (const bool cancel_first : {true, false}) {
        girder::cancellation_source source;
        if (cancel_first)
            source.request();
        std::vector<task<>> operations;
        operations.push_back(delayed(for_ever, source.get()));
        operations.push_back(signalled(never.get(), source.get()));
        if (cancel_first) {
            operations.push_back(on_a_pool_thread(source.get()));
            operations.push_back(on_thread(here, source.get()));
        }
        std::vector<outcome> results(operations.size());
        std::vector<running> started;
        for (std::size_t i = 0; i < operations.size(); ++i)
            started.push_back(observe(std::move(operations[i]), results[i]));
        source.request();
        for (const outcome& result : results) {
            ASSERT_TRUE(result.wait());
            EXPECT_TRUE(result.cancelled) << cancel_first;
        }
    }
}

TEST(resume_test, cancelling_races_with_the_end_of_the_wait_and_resumes_once)
{
    for (int round = 0; round < 500; ++round) {
        girder::cancellation_source source;
        outcome result;
        const running started = observe(delayed(std::chrono::microseconds(round % 50), source.get()), result);
        source.request();
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
