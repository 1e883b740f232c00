#include "fixture.h"

namespace {

using namespace e2e;

using process_test = machine_test;

TEST_F(process_test, a_second_start_ends_at_once_and_brings_the_window_to_the_front)
{
    // By which installers and the service see that the program runs.
    const auto marker = [] {
        return girder::unique_kernel_handle(
            ::OpenMutexW(SYNCHRONIZE, FALSE, L"Global\\Zelmarkco_TIDELINK_SERVER__Running_Mutex"));
    };
    const utility first;
    const ui_driver::dialog window = first.window();
    EXPECT_TRUE(marker());
    ::ShowWindow(window.handle(), SW_MINIMIZE);

    const utility second;
    EXPECT_EQ(second.exit_code(), 0U);
    EXPECT_TRUE(ui_driver::eventually([&] { return ::GetForegroundWindow() == window.handle(); }));
    EXPECT_TRUE(ui_driver::eventually([&] { return !::IsIconic(window.handle()); }));
    EXPECT_EQ(ui_driver::find_dialogs(main_window_title).size(), 1U);
    EXPECT_EQ(first.close(), 0U);
    EXPECT_TRUE(ui_driver::eventually([&] { return !marker(); }));
}

TEST_F(process_test, handles_do_not_grow_over_200_saves)
{
    const support::reload_listener server;
    support::debug_monitor log;
    const utility program;
    int saves = 0;
    expect_no_more_handles(log, program, 200, [&] {
        program.control(id::auto_discovery).click();
        program.control(id::apply).click();
        // Two signals that nobody has taken would be one.
        EXPECT_TRUE(heard(server, ++saves));
    });
    EXPECT_EQ(program.close(), 0U);
}

} // namespace
