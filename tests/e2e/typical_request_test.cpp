#include "fixture.h"

namespace {

using namespace e2e;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using ui_driver::list_row;

class typical_request_test : public machine_test {
protected:
    support::reload_listener server_;
};

TEST_F(typical_request_test, sharing_one_port_reaches_the_registry_and_the_server_and_is_shown_again)
{
    const utility first;
    EXPECT_THAT(first.list().rows(),
                ElementsAre(list_row{u"Communications Port (COM1)", 1, true},
                            list_row{u"USB Serial Port (COM3)", 3, true}, list_row{u"USB Serial Port (COM7)", 7, true},
                            list_row{u"USB Serial Port (COM10)", 10, true}));
    EXPECT_TRUE(first.control(id::share_all).checked());
    EXPECT_FALSE(first.control(id::port_list).enabled());
    EXPECT_TRUE(first.control(id::auto_discovery).checked());
    EXPECT_FALSE(first.apply_enabled());

    first.control(id::share_selected).click();
    EXPECT_TRUE(first.control(id::port_list).enabled());
    first.check_ports({3});
    EXPECT_TRUE(first.apply_enabled());
    EXPECT_THAT(settings_key::read(), IsEmpty()) << "nothing is written before Apply";

    first.control(id::apply).click();
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"sharedPorts", binary({3, 0, 0, 0}))));
    EXPECT_TRUE(heard(server_, 1));
    EXPECT_FALSE(first.apply_enabled());
    EXPECT_EQ(first.close(), 0U);

    const utility second;
    EXPECT_TRUE(second.control(id::share_selected).checked());
    EXPECT_TRUE(second.control(id::port_list).enabled());
    EXPECT_THAT(second.checked_ports(), ElementsAre(3));
    EXPECT_FALSE(second.apply_enabled());
    second.control(id::ok).post_click();
    EXPECT_EQ(second.exit_code(), 0U);
    EXPECT_TRUE(heard(server_, 1)) << "OK without a change writes nothing";
}

TEST_F(typical_request_test, ok_after_changes_writes_once_and_ends_the_program)
{
    const utility program;
    program.control(id::auto_discovery).click();
    program.control(id::share_selected).click();
    program.check_ports({7, 10});
    program.control(id::ok).post_click();
    EXPECT_EQ(program.exit_code(), 0U);
    EXPECT_TRUE(heard(server_, 1));
    EXPECT_THAT(settings_key::read(),
                ElementsAre(Pair(u"autoDiscovery", number(0)), Pair(u"sharedPorts", ports({7, 10}))));
}

TEST_F(typical_request_test, cancel_and_the_close_box_write_nothing)
{
    settings_key::write(u"sharedPorts", ports({1}));
    for (const bool by_button : {true, false}) {
        const utility program;
        program.control(id::auto_discovery).click();
        program.check_ports({7});
        if (by_button)
            program.control(id::cancel).post_click();
        else
            program.window().post_close();
        EXPECT_EQ(program.exit_code(), 0U);
    }
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"sharedPorts", ports({1}))));
    EXPECT_TRUE(heard(server_, 0));
}

} // namespace
