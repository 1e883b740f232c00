#include "async/resume.h"
#include "async/task.h"
#include "base/handles.h"
#include "support/detached.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <vector>

namespace {

using namespace girder;
using namespace std::chrono_literals;
using support::running;

unique_kernel_handle make_event()
{
    return unique_kernel_handle{::CreateEventW(nullptr, TRUE, FALSE, nullptr)};
}

/// How an operation ended, for the thread that waits for it.
struct outcome {
    unique_kernel_handle done = make_event();
    bool cancelled = false;

    static constexpr DWORD patience_ms = 10'000;

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
    co_await signal_and_stay(result.done.get());
}

/// Lets go of its thread in that way.
template <typename Way, typename... Arguments>
task<> suspended(Arguments... arguments)
{
    co_await Way(arguments...);
}

TEST(resume_test, cancelling_shows_at_once_before_and_while_an_operation_is_suspended)
{
    ui_thread here(WM_APP + 8);
    const unique_kernel_handle never = make_event();
    for (const bool cancel_first : {true, false}) {
        cancellation_source source;
        if (cancel_first)
            source.request();
        std::vector<task<>> operations;
        operations.push_back(suspended<resume_after>(1h, source.get()));
        operations.push_back(suspended<resume_on_signal>(never.get(), source.get()));
        if (cancel_first) {
            operations.push_back(suspended<resume_background>(source.get()));
            operations.push_back(suspended<resume_foreground>(std::ref(here), source.get()));
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
        cancellation_source source;
        outcome result;
        const running started =
            observe(suspended<resume_after>(std::chrono::microseconds(round % 50), source.get()), result);
        source.request();
        ASSERT_TRUE(result.wait());
    }
}

} // namespace
