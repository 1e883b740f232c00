#include "async/task.h"
#include "support/detached.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace {

using girder::task;
using support::running;

/// Counts the objects that are alive.
struct counted {
    explicit counted(int& alive) : alive_(&alive) { ++*alive_; }
    counted(const counted& other) : alive_(other.alive_) { ++*alive_; }
    counted& operator=(const counted&) = default;
    ~counted() { --*alive_; }

    int* alive_;
};

/// Suspends its awaiter until it is told to go on.
struct gate {
    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> operation) noexcept { waiting = operation; }
    void await_resume() const noexcept {}

    std::coroutine_handle<> waiting;
};

task<std::string> text_after(gate& opened, counted argument)
{
    const counted local = argument;
    co_await opened;
    co_return std::string(60, 'x');
}

task<> failing(counted argument)
{
    const counted local = argument;
    throw std::runtime_error("failed");
    co_return;
}

running await_text(gate& opened, counted argument, std::string& result)
{
    task<std::string> operation = text_after(opened, std::move(argument));
    result = co_await std::move(operation);
}

TEST(task_test, objects_of_an_operation_die_once_wherever_it_is_abandoned)
{
    int alive = 0;
    gate opened;
    {
        const task<std::string> never_started = text_after(opened, counted(alive));
        EXPECT_EQ(alive, 1);
    }
    EXPECT_EQ(alive, 0);

    std::string result;
    {
        const running suspended = await_text(opened, counted(alive), result);
        EXPECT_GT(alive, 0);
    }
    EXPECT_EQ(alive, 0);
    EXPECT_EQ(result, "");

    {
        const running completed = await_text(opened, counted(alive), result);
        opened.waiting.resume();
        EXPECT_EQ(result, std::string(60, 'x'));
    }
    EXPECT_EQ(alive, 0);
}

TEST(task_test, exceptions_reach_the_awaiter_through_several_tasks)
{
    int alive = 0;
    std::string caught;
    const auto outer = [](int& count) -> task<> {
        task<> inner = failing(counted(count));
        co_await std::move(inner);
    };
    const auto run = [&outer](int& count, std::string& text) -> running {
        try {
            task<> operation = outer(count);
            co_await std::move(operation);
        } catch (const std::runtime_error& error) {
            text = error.what();
        }
    };
    const running done = run(alive, caught);
    EXPECT_EQ(caught, "failed");
    EXPECT_EQ(alive, 0);
}

task<int> one()
{
    co_return 1;
}

TEST(task_test, a_long_loop_of_awaits_needs_no_stack)
{
    int sum = 0;
    const auto add_up = [](int& total) -> running {
        for (int i = 0; i < 1'000'000; ++i) {
            task<int> next = one();
            total += co_await std::move(next);
        }
    };
    const running done = add_up(sum);
    EXPECT_EQ(sum, 1'000'000);
}

TEST(task_test, results_may_be_move_only)
{
    std::unique_ptr<int> result;
    const auto make = []() -> task<std::unique_ptr<int>> { co_return std::make_unique<int>(7); };
    const auto run = [&make](std::unique_ptr<int>& out) -> running {
        task<std::unique_ptr<int>> operation = make();
        out = co_await std::move(operation);
    };
    const running done = run(result);
    ASSERT_TRUE(result);
    EXPECT_EQ(*result, 7);
}

} // namespace
