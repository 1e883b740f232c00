#include "app/background_operation.h"
#include "app/message_hook.h"
#include "dialog_environment.h"
#include "ui/modal_loop.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <chrono>

namespace {

using namespace std::chrono_literals;
using namespace tidelink;
using girder::task;

task<int> number_after(std::chrono::milliseconds delay, int number, std::function<void()> at_end = [] {})
{
    co_await girder::resume_after(delay);
    at_end();
    co_return number;
}

class background_operation_test : public testing::Test, support::dialog_environment {
protected:
    void SetUp() override
    {
        owner_ = ::CreateWindowExW(0, L"STATIC", L"Owner", WS_OVERLAPPED | WS_VISIBLE, 0, 0, 400, 300, nullptr, nullptr,
                                   nullptr, nullptr);
        ::SetCursor(::LoadCursorW(nullptr, IDC_ARROW));
    }
    void TearDown() override { ::DestroyWindow(owner_); }

    static HWND wait_dialog() { return ::FindWindowExW(nullptr, nullptr, nullptr, L"Please Wait"); }

    int run(task<int> operation) { return RunWithWaitDialog(owner_, thread_, {}, std::move(operation)); }

    girder::ui_thread thread_{WM_APP + 9};
    message_hook hook_{thread_};
    HWND owner_ = nullptr;
};

TEST_F(background_operation_test, what_a_slow_operation_posts_runs_before_the_dialog_closes)
{
    const HCURSOR hourglass = ::LoadCursorW(nullptr, IDC_WAIT);
    int runs_in_dialog = 0;
    const auto look = [&] {
        runs_in_dialog += wait_dialog() && !::IsWindowEnabled(owner_) && ::GetCursor() == hourglass ? 1 : 0;
    };
    const auto post = [&] {
        for (int i = 0; i < 3; ++i)
            thread_.post(look);
    };
    EXPECT_EQ(run(number_after(700ms, 8, post)), 8);
    EXPECT_EQ(runs_in_dialog, 3);
    EXPECT_FALSE(wait_dialog());
    EXPECT_TRUE(::IsWindowEnabled(owner_));
    EXPECT_EQ(::GetCursor(), ::LoadCursorW(nullptr, IDC_ARROW));
}

TEST_F(background_operation_test, two_operations_at_once_keep_their_results)
{
    int inner = 0;
    for (const auto inner_duration : {700ms, 1500ms}) {
        const support::in_modal_loop watch([&](HWND) { inner = run(number_after(inner_duration, 2)); });
        EXPECT_EQ(run(number_after(1300ms, 1)), 1);
        EXPECT_EQ(inner, 2);
        EXPECT_FALSE(wait_dialog());
        EXPECT_TRUE(::IsWindowEnabled(owner_));
    }
}

TEST_F(background_operation_test, an_operation_that_ends_while_the_dialog_opens_still_ends_it)
{
    // Around the moment of opening; each round hits another place of it.
    for (int round = 0; round < 8; ++round)
        EXPECT_EQ(run(number_after(492ms + round * 2ms, round)), round);
    EXPECT_FALSE(wait_dialog());
    EXPECT_TRUE(::IsWindowEnabled(owner_));
}

} // namespace
