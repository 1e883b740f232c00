#include "fixture.h"

namespace {

using namespace e2e;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using edge_case_test = machine_test;

TEST_F(edge_case_test, without_a_server_saving_succeeds_silently)
{
    const utility program;
    program.control(id::auto_discovery).click();
    program.control(id::apply).click();
    EXPECT_FALSE(program.apply_enabled());
    EXPECT_THAT(settings_key::read(),
                ElementsAre(Pair(u"autoDiscovery", number(0)), Pair(u"sharedPorts", ports({1, 3, 7, 10}))))
        << "applying any change writes every checked port, also while all are shared";
}

TEST_F(edge_case_test, share_all_keeps_the_check_marks_and_stores_the_checked_ports)
{
    settings_key::write(u"sharedPorts", ports({7}));
    {
        const utility program;
        program.control(id::share_all).click();
        EXPECT_FALSE(program.control(id::port_list).enabled());
        EXPECT_THAT(program.checked_ports(), ElementsAre(7));
        program.control(id::apply).click();
        EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"sharedPorts", ports({7}))));
        EXPECT_EQ(program.close(), 0U);
    }
    const utility reopened;
    EXPECT_TRUE(reopened.control(id::share_selected).checked());
}

TEST_F(edge_case_test, no_checked_port_is_stored_as_sharing_all)
{
    settings_key::write(u"sharedPorts", ports({7}));
    {
        const utility program;
        program.check_ports({});
        program.control(id::apply).click();
        EXPECT_TRUE(settings_key::exists());
        EXPECT_THAT(settings_key::read(), IsEmpty());
        EXPECT_EQ(program.close(), 0U);
    }
    const utility reopened;
    EXPECT_TRUE(reopened.control(id::share_all).checked());
    EXPECT_THAT(reopened.checked_ports(), ElementsAre(1, 3, 7, 10));
}

TEST_F(edge_case_test, a_save_removes_foreign_values_and_values_that_are_back_at_their_defaults)
{
    settings_key::write(u"autoDiscovery", number(0));
    settings_key::write(u"left by another program", text(u"x"));
    const utility program;
    EXPECT_FALSE(program.control(id::auto_discovery).checked());
    program.control(id::auto_discovery).click();
    program.control(id::apply).click();
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"sharedPorts", ports({1, 3, 7, 10}))));
}

TEST_F(edge_case_test, a_check_mark_is_a_change_and_a_selection_is_none)
{
    settings_key::write(u"sharedPorts", ports({3}));
    const utility program;
    const ui_driver::list_view list = program.list();
    list.click_text(2);
    EXPECT_EQ(list.selected(), 2);
    EXPECT_FALSE(program.apply_enabled());
    list.toggle(2);
    EXPECT_TRUE(program.apply_enabled());
    program.control(id::apply).click();
    EXPECT_FALSE(program.apply_enabled());
    list.toggle(2);
    EXPECT_TRUE(program.apply_enabled()) << "unchecking is a change, too";
}

TEST_F(edge_case_test, without_ports_the_list_is_empty_and_everything_else_works)
{
    device_database::remove_port_devices();
    const utility program;
    EXPECT_THAT(program.list().rows(), IsEmpty());
    program.control(id::share_selected).click();
    program.control(id::apply).click();
    EXPECT_THAT(settings_key::read(), IsEmpty());
    EXPECT_FALSE(program.apply_enabled());
}

class absent_port_test : public machine_test {
protected:
    void SetUp() override
    {
        machine_test::SetUp();
        settings_key::write(u"sharedPorts", ports({3, 7, 12}));
        device_database::remove_port_device(u"COM7");
    }

    support::reload_listener server_;
};

TEST_F(absent_port_test, dropping_stored_ports_that_are_not_present_is_asked_first)
{
    const utility program;
    EXPECT_THAT(program.checked_ports(), ElementsAre(3));
    EXPECT_FALSE(program.apply_enabled()) << "nothing is written by itself";
    program.check_ports({1, 3});

    program.control(id::apply).post_click();
    const ui_driver::dialog refused = program.message(question_title);
    EXPECT_THAT(utility::text_of(refused), testing::HasSubstr("COM7, COM12"));
    utility::answer(refused, id::no);
    EXPECT_TRUE(program.apply_enabled());
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"sharedPorts", ports({3, 7, 12}))));
    EXPECT_TRUE(heard(server_, 0));

    program.control(id::apply).post_click();
    utility::answer(program.message(question_title), id::yes);
    EXPECT_TRUE(heard(server_, 1));
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"sharedPorts", ports({1, 3}))));
    EXPECT_FALSE(program.apply_enabled());

    program.check_ports({3});
    program.control(id::apply).click();
    EXPECT_TRUE(heard(server_, 2)) << "asked once only";
}

TEST_F(absent_port_test, the_question_tells_when_no_port_is_left_and_all_get_shared)
{
    const utility program;
    program.check_ports({});
    program.control(id::apply).post_click();
    const ui_driver::dialog question = program.message(question_title);
    EXPECT_THAT(utility::text_of(question), testing::HasSubstr("all ports will be shared: COM7, COM12."));
    utility::answer(question, id::no);
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"sharedPorts", ports({3, 7, 12}))));
}

TEST_F(absent_port_test, what_another_program_changes_under_the_question_is_asked_about_again)
{
    const utility program;
    const HWND check_box = program.control(id::auto_discovery).handle();
    program.check_ports({1});
    program.control(id::apply).post_click();
    const ui_driver::dialog question = program.message(question_title);
    ui_driver::send(check_box, BM_SETCHECK, BST_UNCHECKED);
    utility::answer(question, id::yes);
    utility::answer(program.message(question_title), id::yes);
    EXPECT_TRUE(heard(server_, 1));
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"autoDiscovery", number(0)), Pair(u"sharedPorts", ports({1}))));
}

TEST_F(absent_port_test, answering_no_to_ok_keeps_the_window_and_its_changes)
{
    const utility program;
    program.control(id::auto_discovery).click();
    program.control(id::ok).post_click();
    utility::answer(program.message(question_title), id::no);
    EXPECT_TRUE(program.apply_enabled());
    EXPECT_FALSE(program.control(id::auto_discovery).checked());
    EXPECT_EQ(program.close(), 0U);
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"sharedPorts", ports({3, 7, 12}))));
}

} // namespace
