#include "async/ui_thread.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

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
