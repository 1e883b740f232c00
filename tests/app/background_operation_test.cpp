#include "app/background_operation.h"
#include "app/message_hook.h"
#include "async/cancellation.h"
#include "base/handles.h"
#include "base/system_error.h"
#include "localisation/string_tables.h"
#include "support/counted.h"

#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using namespace tidelink;
using girder::cancellation;
using girder::operation_cancelled;
using girder::task;
using girder::unique_kernel_handle;
using support::counted;
using clock = std::chrono::steady_clock;

task<int> number_after(std::chrono::milliseconds delay, int number, cancellation cancelled)
{
    const counted owned;
    co_await girder::resume_after(delay, std::move(cancelled));
    co_return number;
}

task<> failure_after(std::chrono::milliseconds delay, std::uint32_t code)
{
    const counted owned;
    co_await girder::resume_after(delay);
    throw girder::system_error(code, "StartServiceW");
}

/// A call that blocks a pool thread, as those of the service manager can; nothing can cancel it.
task<> blocked_until(HANDLE event)
{
    const counted owned;
    ::WaitForSingleObject(event, INFINITE);
    co_return;
}

/// Takes its time to go.
struct lingering : counted {
    lingering() = default;
    lingering(const lingering&) = default;
    lingering& operator=(const lingering&) = default;
    ~lingering() { ::Sleep(30); }
};

task<> taking([[maybe_unused]] lingering argument)
{
    co_return;
}

bool pointer_is_hourglass()
{
    return ::GetCursor() == ::LoadCursorW(nullptr, IDC_WAIT);
}

class background_operation_test : public testing::Test {
protected:
    void SetUp() override
    {
        constexpr INITCOMMONCONTROLSEX classes{.dwSize = sizeof(INITCOMMONCONTROLSEX), .dwICC = ICC_PROGRESS_CLASS};
        ::InitCommonControlsEx(&classes);
        tidelink::initialise(u"", u"en");
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

    static void wait_for_the_last_object()
    {
        for (int i = 0; i < 1000 && counted::alive != 0; ++i)
            ::Sleep(5);
    }

    HWND wait_dialog() const { return ::FindWindowExW(nullptr, nullptr, nullptr, L"Please Wait"); }

    /// Calls `action` on this thread as soon as the wait dialog is open.
    std::jthread when_open(std::function<void()> action)
    {
        return std::jthread([this, action = std::move(action)](const std::stop_token& stop) {
            while (!stop.stop_requested() && !(wait_dialog() && ::IsWindowVisible(wait_dialog())))
                ::Sleep(2);
            if (!stop.stop_requested())
                thread_.post(action);
        });
    }

    template <typename T>
    T run(task<T> operation)
    {
        return RunWithWaitDialog(owner_, thread_, {}, std::move(operation));
    }

    girder::ui_thread thread_{WM_APP + 9};
    message_hook hook_{thread_};
    HWND owner_ = nullptr;
};

TEST_F(background_operation_test, a_quick_operation_shows_neither_dialog_nor_hourglass)
{
    bool opened = false;
    bool hourglass = false;
    // From another thread: this one is blocked.
    const HWND owner = owner_;
    const DWORD here = ::GetCurrentThreadId();
    std::jthread watch([&](const std::stop_token& stop) {
        ::AttachThreadInput(::GetCurrentThreadId(), here, TRUE);
        while (!stop.stop_requested()) {
            opened = opened || wait_dialog() || !::IsWindowEnabled(owner);
            hourglass = hourglass || pointer_is_hourglass();
            ::Sleep(2);
        }
        ::AttachThreadInput(::GetCurrentThreadId(), here, FALSE);
    });
    const auto begin = clock::now();
    EXPECT_EQ(run(number_after(100ms, 7, {})), 7);
    EXPECT_LT(clock::now() - begin, 400ms);
    watch.request_stop();
    watch.join();
    EXPECT_FALSE(opened);
    EXPECT_FALSE(hourglass);
}

TEST_F(background_operation_test, a_slow_operation_shows_the_dialog_until_it_ends)
{
    clock::duration opened{};
    bool hourglass = false;
    bool owner_enabled = true;
    const auto begin = clock::now();
    const auto watch = when_open([&] {
        opened = clock::now() - begin;
        hourglass = pointer_is_hourglass();
        owner_enabled = ::IsWindowEnabled(owner_) != FALSE;
    });
    EXPECT_EQ(run(number_after(1200ms, 8, {})), 8);
    EXPECT_GE(opened, 490ms);
    EXPECT_LT(opened, 1100ms);
    EXPECT_TRUE(hourglass);
    EXPECT_FALSE(owner_enabled);
    EXPECT_FALSE(wait_dialog());
    EXPECT_TRUE(::IsWindowEnabled(owner_));
    EXPECT_EQ(::GetCursor(), ::LoadCursorW(nullptr, IDC_ARROW));
}

TEST_F(background_operation_test, errors_arrive_with_their_code_before_and_after_the_dialog)
{
    constexpr std::uint32_t access_denied = 0x80070005;
    for (const auto delay : {1ms, 700ms}) {
        try {
            run(failure_after(delay, access_denied));
            ADD_FAILURE() << "no error";
        } catch (const girder::system_error& error) {
            EXPECT_EQ(error.code(), access_denied);
            EXPECT_EQ(counted::alive, 0);
        }
    }
}

TEST_F(background_operation_test, everything_of_an_operation_is_gone_when_it_has_returned)
{
    const lingering argument;
    task<> operation = taking(argument);
    run(std::move(operation));
    EXPECT_EQ(counted::alive, 1) << "the argument here";
}

TEST_F(background_operation_test, what_is_posted_while_the_dialog_is_open_runs_before_it_closes)
{
    std::vector<HWND> dialogs;
    const auto posting = [](girder::ui_thread& thread, std::function<void()> callable) -> task<> {
        co_await girder::resume_after(700ms);
        for (int i = 0; i < 3; ++i)
            thread.post(callable);
    };
    run(posting(thread_, [&] { dialogs.push_back(wait_dialog()); }));
    ASSERT_EQ(dialogs.size(), 3U);
    for (const HWND dialog : dialogs)
        EXPECT_TRUE(dialog);
}

TEST_F(background_operation_test, two_operations_at_once_keep_their_results)
{
    int inner = 0;
    for (const auto inner_duration : {700ms, 1500ms}) {
        const auto watch =
            when_open([&] { inner = RunWithWaitDialog(owner_, thread_, {}, number_after(inner_duration, 2, {})); });
        EXPECT_EQ(run(number_after(1300ms, 1, {})), 1);
        EXPECT_EQ(inner, 2);
        EXPECT_FALSE(wait_dialog());
        EXPECT_TRUE(::IsWindowEnabled(owner_));
    }
}

TEST_F(background_operation_test, escape_and_the_end_of_the_owner_cancel_at_once)
{
    const std::function<void()> endings[] = {[&] { ::PostMessageW(wait_dialog(), WM_KEYDOWN, VK_ESCAPE, 0); },
                                             [&] { ::DestroyWindow(owner_); }};
    for (const auto& end : endings) {
        clock::time_point begin;
        const auto watch = when_open([&] {
            begin = clock::now();
            end();
        });
        const std::stop_source cancel;
        EXPECT_THROW(RunWithWaitDialog(owner_, thread_, cancel, number_after(1h, 0, cancel.get_token())),
                     operation_cancelled);
        wait_for_the_last_object();
        EXPECT_LT(clock::now() - begin, 1s);
    }
}

TEST_F(background_operation_test, what_cannot_be_cancelled_keeps_the_dialog_after_escape_and_is_left_with_its_owner)
{
    const unique_kernel_handle event(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
    HWND after_escape = nullptr;
    const auto watch = when_open([&] {
        ::SendMessageW(wait_dialog(), WM_COMMAND, IDCANCEL, 0);
        thread_.post([&] {
            after_escape = wait_dialog();
            ::DestroyWindow(owner_);
        });
    });
    EXPECT_THROW(run(blocked_until(event.get())), operation_cancelled);
    EXPECT_TRUE(after_escape);
    EXPECT_FALSE(wait_dialog());
    EXPECT_EQ(counted::alive, 1) << "it goes on without the window";
    ::SetEvent(event.get());
    wait_for_the_last_object();
}

TEST_F(background_operation_test, an_operation_that_ends_while_the_dialog_opens_still_ends_it)
{
    // Around the moment of opening; each round hits another place of it.
    for (int round = 0; round < 8; ++round)
        EXPECT_EQ(run(number_after(492ms + round * 2ms, round, {})), round);
    EXPECT_FALSE(wait_dialog());
    EXPECT_TRUE(::IsWindowEnabled(owner_));
}

} // namespace
