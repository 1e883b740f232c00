#include "fixture.h"
#include "ui_driver/keyboard.h"

namespace {

using namespace e2e;
using testing::ElementsAre;
using testing::Pair;
using ui_driver::eventually;
using ui_driver::press_key;

using keyboard_test = machine_test;

TEST_F(keyboard_test, tab_goes_from_top_to_bottom_and_the_typical_request_needs_no_mouse)
{
    const utility program;
    const ui_driver::dialog window = program.window();
    ::SetForegroundWindow(window.handle());
    ASSERT_TRUE(eventually([&] { return ::GetForegroundWindow() == window.handle() && window.focused() != 0; }));
    /// \return the controls on the way
    const auto tab_to = [&](int control) {
        constexpr std::size_t more_than_a_round = 20;
        std::vector<int> way;
        do {
            const int from = window.focused();
            press_key(VK_TAB);
            EXPECT_TRUE(eventually([&] { return window.focused() != from && window.focused() != 0; })) << from;
            way.push_back(window.focused());
        } while (way.back() != control && way.size() < more_than_a_round);
        return way;
    };
    tab_to(id::share_all);
    press_key(VK_DOWN);
    ASSERT_TRUE(eventually([&] { return window.focused() == id::share_selected && program.apply_enabled(); }));
    EXPECT_THAT(tab_to(id::share_selected),
                ElementsAre(id::port_list, id::auto_discovery, id::security, id::language, id::about, id::ok,
                            id::cancel, id::apply, id::status, id::start, id::share_selected));
    tab_to(id::port_list);
    const ui_driver::list_view list = program.list();
    EXPECT_TRUE(eventually([&] { return list.selected() == 0; })) << "there the keyboard begins";
    for (const auto& [row, key] : {std::pair(3, VK_END), {2, VK_UP}, {0, VK_HOME}}) {
        press_key(static_cast<WORD>(key));
        ASSERT_TRUE(eventually([&] { return list.selected() == row; })) << row;
        press_key(VK_SPACE);
        ASSERT_TRUE(eventually([&] { return !list.checked(row); })) << row;
    }
    EXPECT_THAT(program.checked_ports(), ElementsAre(3));

    tab_to(id::apply);
    press_key(VK_SPACE);
    EXPECT_TRUE(eventually([&] { return !program.apply_enabled(); }));
    EXPECT_TRUE(eventually([&] { return window.focused() == id::ok; }))
        << "the focus does not stay on a disabled button";
    press_key(VK_RETURN);
    EXPECT_EQ(program.exit_code(), 0U) << "Enter is OK";
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"sharedPorts", ports({3}))));
}

} // namespace
