#include "async/task.h"
#include "support/counted.h"
#include "support/detached.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using girder::task;
using support::counted;
using support::running;

/// Suspends its awaiter until it is told to go on.
struct gate {
    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> operation) noexcept { waiting = operation; }
    void await_resume() const noexcept {}

    std::coroutine_handle<> waiting;
};

task<std::string> text_after(gate& opened, [[maybe_unused]] counted argument)
{
    const counted local;
    co_await opened;
    co_return std::string(60, 'x');
}

running await_text(gate& opened, std::string& result)
{
    const counted argument;
    task<std::string> operation = text_after(opened, argument);
    result = co_await std::move(operation);
}

TEST(task_test, objects_of_an_operation_die_once_wherever_it_is_abandoned)
{
    gate opened;
    {
        const task<std::string> never_started = text_after(opened, counted());
        EXPECT_EQ(counted::alive, 1);
    }
    EXPECT_EQ(counted::alive, 0);

    std::string result;
    {
        const running suspended = await_text(opened, result);
        EXPECT_GT(counted::alive, 0);
    }
    EXPECT_EQ(counted::alive, 0);
    EXPECT_EQ(result, "");

    {
        const running completed = await_text(opened, result);
        opened.waiting.resume();
        EXPECT_EQ(result, std::string(60, 'x'));
    }
    EXPECT_EQ(counted::alive, 0);
}

} // namespace
