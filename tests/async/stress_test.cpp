#include "async/resume.h"
#include "async/task.h"
#include "async/ui_thread.h"
#include "base/system_error.h"
#include "base/win32_error.h"
#include "support/counted.h"
#include "support/detached.h"

#include <gtest/gtest.h>

#include <deque>

namespace {

using girder::task;
using support::counted;
using support::running;

constexpr UINT message_number = WM_APP + 10;
constexpr int all_tasks = 10'000;
/// A thread's queue takes 10,000 messages.
constexpr int at_a_time = 500;
constexpr int round_trips = 4;

task<> hop(girder::ui_thread& ui, int number)
{
    const counted owned;
    for (int i = 0; i < round_trips; ++i) {
        co_await girder::resume_background();
        EXPECT_FALSE(ui.is_current());
        co_await girder::resume_foreground(ui);
        EXPECT_TRUE(ui.is_current());
    }
    co_await girder::resume_background();
    if (number % 2 == 1)
        girder::throw_win32(static_cast<DWORD>(number), "odd");
}

running observe(girder::ui_thread& ui, int number, int& ended, std::int64_t& sum_of_codes)
{
    std::uint32_t code = 0;
    task<> operation = hop(ui, number);
    try {
        co_await std::move(operation);
    } catch (const girder::system_error& error) {
        code = error.code();
    }
    co_await girder::resume_foreground(ui);
    ++ended;
    sum_of_codes += code;
}

TEST(stress_test, ten_thousand_tasks_hop_between_the_pool_and_the_user_interface_thread)
{
    girder::ui_thread ui(message_number);
    int ended = 0;
    std::int64_t sum_of_codes = 0;
    std::deque<running> operations;
    for (int started = 0; ended < all_tasks;) {
        for (; started < all_tasks && started - ended < at_a_time; ++started)
            operations.push_back(observe(ui, started, ended, sum_of_codes));
        MSG message;
        ASSERT_TRUE(::GetMessageW(&message, nullptr, message_number, message_number));
        ui.run(message);
    }
    EXPECT_EQ(sum_of_codes, std::int64_t{all_tasks / 2} * (all_tasks / 2)) << "every error with its code";
    operations.clear();
    EXPECT_EQ(counted::alive, 0);
}

} // namespace
