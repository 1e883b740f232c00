#include "app/background_operation.h"
#include "app/message_hook.h"
#include "async/cancellation.h"
#include "base/handles.h"
#include "base/system_error.h"
#include "dialog_environment.h"
#include "support/counted.h"
#include "ui/modal_loop.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <chrono>

namespace {

using namespace std::chrono_literals;
using namespace tidelink;
using girder::task;
using girder::unique_kernel_handle;
using support::counted;

task<int> number_after(std::chrono::milliseconds delay, int number)
{
    const counted owned;
    co_await girder::resume_after(delay);
    co_return number;
}

/// Takes its time to go.
struct lingering : counted {
    lingering() = default;
    lingering(const lingering&) = default;
    lingering& operator=(const lingering&) = default;
    ~lingering() { ::Sleep(30); }
};

task<> failure_after(std::chrono::milliseconds delay, std::uint32_t code, [[maybe_unused]] lingering argument)
{
    co_await girder::resume_after(delay);
    throw girder::system_error(code, "StartServiceW");
}

task<int> number_after_posts(std::chrono::milliseconds delay, int number, girder::ui_thread& thread,
                             std::function<void()> callable)
{
    co_await girder::resume_after(delay);
    for (int i = 0; i < 3; ++i)
        thread.post(callable);
    co_return number;
}

/// A call that blocks a pool thread, as those of the service manager can; nothing can cancel it.
task<> blocked_until(HANDLE event)
{
    const counted owned;
    ::WaitForSingleObject(event, INFINITE);
    co_return;
}

class background_operation_test : public testing::Test, support::dialog_environment {
protected:
    void SetUp() override
    {
        owner_ = ::CreateWindowExW(0, L"STATIC", L"Owner", WS_OVERLAPPED | WS_VISIBLE, 0, 0, 400, 300, nullptr, nullptr,
                                   nullptr, nullptr);
        ::SetCursor(::LoadCursorW(nullptr, IDC_ARROW));
    }
    void TearDown() override
    {
        if (::IsWindow(owner_))
            ::DestroyWindow(owner_);
        EXPECT_EQ(counted::alive, 0);
        MSG message;
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            ::DispatchMessageW(&message);
    }

    static HWND wait_dialog() { return ::FindWindowExW(nullptr, nullptr, nullptr, L"Please Wait"); }

    template <typename T>
    T run(task<T> operation)
    {
        return RunWithWaitDialog(owner_, thread_, {}, std::move(operation));
    }

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
    EXPECT_EQ(run(number_after_posts(700ms, 8, thread_, look)), 8);
    EXPECT_EQ(runs_in_dialog, 3);
    EXPECT_FALSE(wait_dialog());
    EXPECT_TRUE(::IsWindowEnabled(owner_));
    EXPECT_EQ(::GetCursor(), ::LoadCursorW(nullptr, IDC_ARROW));
}

TEST_F(background_operation_test, errors_arrive_with_their_code_when_everything_of_the_operation_is_gone)
{
    constexpr std::uint32_t access_denied = 0x80070005;
    for (const auto delay : {1ms, 700ms}) {
        try {
            run(failure_after(delay, access_denied, {}));
            ADD_FAILURE() << "no error";
        } catch (const girder::system_error& error) {
            EXPECT_EQ(error.code(), access_denied);
            EXPECT_EQ(counted::alive, 0);
        }
    }
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

TEST_F(background_operation_test, what_cannot_be_cancelled_keeps_the_dialog_after_escape_and_is_left_with_its_owner)
{
    const unique_kernel_handle event(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
    HWND after_escape = nullptr;
    const support::in_modal_loop watch([&](HWND dialog) {
        ::SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
        thread_.post([&] {
            after_escape = wait_dialog();
            ::DestroyWindow(owner_);
        });
    });
    EXPECT_THROW(run(blocked_until(event.get())), girder::operation_cancelled);
    EXPECT_TRUE(after_escape);
    EXPECT_FALSE(wait_dialog());
    EXPECT_EQ(counted::alive, 1) << "it goes on without the window";
    ::SetEvent(event.get());
    for (int i = 0; i < 1000 && counted::alive != 0; ++i)
        ::Sleep(5);
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
