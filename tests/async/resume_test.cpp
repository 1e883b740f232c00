#include "async/resume.h"
#include "async/task.h"
#include "base/handles.h"
#include "observed.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <vector>

namespace {

using namespace girder;
using namespace std::chrono_literals;
using support::observe;
using support::outcome;
using support::running;

/// Lets go of its thread in that way.
template <typename Way, typename... Arguments>
task<> suspended(Arguments... arguments)
{
    co_await Way(arguments...);
}

TEST(resume_test, cancelling_shows_at_once_before_and_while_an_operation_is_suspended)
{
    ui_thread here(WM_APP + 8);
    const unique_kernel_handle never(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
    for (const bool cancel_first : {true, false}) {
        const cancellation_source source;
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
            EXPECT_TRUE(result.was_cancelled) << cancel_first;
        }
    }
}

TEST(resume_test, cancelling_races_with_the_end_of_the_wait_and_resumes_once)
{
    for (int round = 0; round < 500; ++round) {
        const cancellation_source source;
        outcome result;
        const running started =
            observe(suspended<resume_after>(std::chrono::microseconds(round % 50), source.get()), result);
        source.request();
        ASSERT_TRUE(result.wait());
    }
}

TEST(ui_thread_test, a_made_up_pointer_or_a_second_delivery_runs_nothing)
{
    constexpr UINT message_number = WM_APP + 7;
    girder::ui_thread target(message_number);
    int runs = 0;
    target.post([&runs] { ++runs; });
    MSG message;
    ASSERT_TRUE(::PeekMessageW(&message, nullptr, message_number, message_number, PM_REMOVE));
    const MSG genuine = message;

    std::function<void()> never_posted = [&runs] { runs += 100; };
    MSG made_up = genuine;
    made_up.wParam = reinterpret_cast<WPARAM>(&never_posted);
    target.run(made_up);
    MSG with_a_window = genuine;
    with_a_window.hwnd = ::GetDesktopWindow();
    target.run(with_a_window);
    EXPECT_EQ(runs, 0);

    target.run(message);
    EXPECT_EQ(message.message, UINT{WM_NULL});
    MSG repeated = genuine;
    target.run(repeated);
    EXPECT_EQ(runs, 1);
}

} // namespace
