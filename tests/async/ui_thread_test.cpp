#include "async/ui_thread.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

constexpr UINT message_number = WM_APP + 7;

TEST(ui_thread_test, a_made_up_pointer_or_a_second_delivery_runs_nothing)
{
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

TEST(ui_thread_test, what_never_ran_is_destroyed_with_the_object)
{
    auto token = std::make_shared<int>(0);
    {
        girder::ui_thread target(message_number);
        target.post([token] { ++*token; });
        EXPECT_EQ(token.use_count(), 2);
    }
    EXPECT_EQ(token.use_count(), 1);
    EXPECT_EQ(*token, 0);
}

} // namespace
