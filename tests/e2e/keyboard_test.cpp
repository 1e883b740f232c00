#include "fixture.h"
#include "ui_driver/keyboard.h"

namespace {

using namespace e2e;
using testing::ElementsAre;
using testing::Pair;
using ui_driver::eventually;
using ui_driver::press_key;

class keyboard_test : public machine_test {
protected:
    /// A running program whose main window has the keyboard.
    struct active_utility : utility {
        active_utility()
        {
            const HWND main = window().handle();
            ::SetForegroundWindow(main);
            EXPECT_TRUE(eventually([&] { return ::GetForegroundWindow() == main && window().focused() != 0; }));
        }

        /// Presses Tab until the focus is on that control; false after a whole round without it.
        bool move_focus_to(int control) const
        {
            constexpr int more_than_a_round = 20;
            for (int i = 0; i < more_than_a_round; ++i) {
                const int from = window().focused();
                if (from == control)
                    return true;
                press_key(VK_TAB);
                if (!eventually([&] { return window().focused() != from; }))
                    return false;
            }
            return false;
        }
    };
};

TEST_F(keyboard_test, the_typical_request_needs_no_mouse)
{
    const active_utility program;
    ASSERT_TRUE(program.move_focus_to(id::share_all));
    press_key(VK_DOWN);
    ASSERT_TRUE(program.move_focus_to(id::port_list));
    const ui_driver::list_view list = program.list();
    EXPECT_TRUE(eventually([&] { return list.selected() == 0; })) << "there the keyboard begins";
    for (const auto& [row, key] : {std::pair(3, VK_END), {2, VK_UP}, {0, VK_HOME}}) {
        press_key(static_cast<WORD>(key));
        ASSERT_TRUE(eventually([&] { return list.selected() == row; })) << row;
        press_key(VK_SPACE);
        ASSERT_TRUE(eventually([&] { return !list.checked(row); })) << row;
    }
    EXPECT_THAT(program.checked_ports(), ElementsAre(3));

    ASSERT_TRUE(program.move_focus_to(id::apply));
    press_key(VK_SPACE);
    EXPECT_TRUE(eventually([&] { return !program.apply_enabled(); }));
    EXPECT_TRUE(eventually([&] { return program.window().focused() == id::ok; }))
        << "the focus does not stay on a disabled button";
    press_key(VK_RETURN);
    EXPECT_EQ(program.exit_code(), 0U) << "Enter is OK";
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"sharedPorts", ports({3}))));
}

TEST_F(keyboard_test, tab_goes_through_the_window_from_top_to_bottom)
{
    settings_key::write(u"sharedPorts", ports({3}));
    const active_utility program;
    ASSERT_TRUE(program.move_focus_to(id::auto_discovery));
    press_key(VK_SPACE);
    ASSERT_TRUE(eventually([&] { return program.apply_enabled(); }));
    const ui_driver::dialog window = program.window();
    std::vector<int> round;
    do {
        const int from = window.focused();
        press_key(VK_TAB);
        ASSERT_TRUE(eventually([&] { return window.focused() != from && window.focused() != 0; })) << from;
        round.push_back(window.focused());
    } while (round.back() != id::auto_discovery);
    EXPECT_THAT(round, ElementsAre(id::security, id::language, id::about, id::ok, id::cancel, id::apply, id::status,
                                   id::start, id::share_selected, id::port_list, id::auto_discovery));
}

} // namespace
