#include "base/utf.h"
#include "fixture.h"
#include "support/cases.h"

#include <array>

namespace {

using namespace e2e;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

struct unreadable_case {
    const char* name;
    const char16_t* value;
    stored_value stored;
};

/// A value that cannot be read, beside one that can.
class load_failure_test : public machine_test, public testing::WithParamInterface<unreadable_case> {
protected:
    void SetUp() override
    {
        machine_test::SetUp();
        readable_ = GetParam().value == std::u16string(u"autoDiscovery") ? u"sharedPorts" : u"autoDiscovery";
        settings_key::write(readable_, readable_ == u"sharedPorts" ? ports({7}) : number(0));
        settings_key::write(GetParam().value, GetParam().stored);
        before_ = settings_key::read();
    }

    std::u16string readable_;
    stored_values before_;
    support::reload_listener server_;
};

TEST_P(load_failure_test, is_named_at_the_start_and_replaced_only_when_that_is_agreed_to)
{
    const utility program;
    const ui_driver::dialog box = program.message(error_title);
    EXPECT_THAT(utility::text_of(box), HasSubstr(girder::to_utf8(GetParam().value)));
    EXPECT_THAT(utility::text_of(box), testing::Not(HasSubstr(girder::to_utf8(readable_))));
    utility::answer(box, id::ok);
    if (readable_ == u"sharedPorts")
        EXPECT_THAT(program.checked_ports(), ElementsAre(7));
    else
        EXPECT_FALSE(program.control(id::auto_discovery).checked());
    EXPECT_FALSE(program.apply_enabled());
    EXPECT_EQ(settings_key::read(), before_) << "nothing is written by itself";

    program.control(id::share_selected).click();
    program.check_ports({3});
    program.control(id::apply).post_click();
    const ui_driver::dialog question = program.message(question_title);
    EXPECT_THAT(utility::text_of(question), HasSubstr(girder::to_utf8(GetParam().value)));
    utility::answer(question, id::no);
    EXPECT_EQ(settings_key::read(), before_);
    EXPECT_TRUE(heard(server_, 0));
    EXPECT_TRUE(program.apply_enabled());

    program.control(id::apply).post_click();
    utility::answer(program.message(question_title), id::yes);
    EXPECT_TRUE(heard(server_, 1));
    EXPECT_THAT(settings_key::read(), testing::Contains(Pair(u"sharedPorts", ports({3}))));

    program.check_ports({1});
    program.control(id::apply).click();
    EXPECT_TRUE(heard(server_, 2)) << "asked at the first Apply only";
}

INSTANTIATE_TEST_SUITE_P(values, load_failure_test,
                         testing::ValuesIn(std::to_array<unreadable_case>({
                             {"ports_as_text", u"sharedPorts", text(u"3")},
                             {"ports_of_five_bytes", u"sharedPorts", binary({3, 0, 0, 0, 1})},
                             {"a_flag_as_text", u"autoDiscovery", text(u"0")},
                             {"a_flag_of_three_bytes", u"autoDiscovery", {REG_DWORD, {0, 0, 0}}},
                             {"a_language_as_number", u"language", number(7)},
                             {"a_descriptor_as_bytes", u"securityDescriptor", binary({1, 2, 3, 4})},
                         })),
                         support::name_of_row);

using unreachable_key_test = machine_test;

TEST_F(unreachable_key_test, a_save_that_fails_is_shown_and_keeps_the_window)
{
    const support::reload_listener server;
    const utility program;
    program.control(id::auto_discovery).click();
    settings_key::block();
    program.control(id::ok).post_click();
    const ui_driver::dialog box = program.message(error_title);
    EXPECT_THAT(utility::text_of(box), testing::Not(testing::IsEmpty()));
    utility::answer(box, id::ok);
    EXPECT_TRUE(heard(server, 0));
    EXPECT_FALSE(program.control(id::auto_discovery).checked());
    EXPECT_FALSE(program.apply_enabled());

    settings_key::remove();
    program.control(id::share_selected).click();
    program.control(id::ok).post_click();
    EXPECT_EQ(program.exit_code(), 0U);
    EXPECT_TRUE(heard(server, 1));
    EXPECT_THAT(settings_key::read(), testing::Contains(Pair(u"autoDiscovery", number(0))));
}

TEST_F(unreachable_key_test, a_key_that_cannot_be_opened_is_reported_and_the_defaults_are_shown)
{
    settings_key::block();
    const utility program;
    utility::answer(program.message(error_title), id::ok);
    EXPECT_TRUE(program.control(id::share_all).checked());
    EXPECT_TRUE(program.control(id::auto_discovery).checked());
    EXPECT_THAT(program.checked_ports(), ElementsAre(1, 3, 7, 10));
    EXPECT_FALSE(program.apply_enabled());

    settings_key::remove();
    settings_key::write(u"language", text(u"de"));
    const stored_values before = settings_key::read();
    program.control(id::auto_discovery).click();
    program.control(id::apply).post_click();
    const ui_driver::dialog question = program.message(question_title);
    EXPECT_THAT(utility::text_of(question), HasSubstr("securityDescriptor, autoDiscovery, sharedPorts, language"));
    utility::answer(question, id::no);
    EXPECT_EQ(settings_key::read(), before);
    EXPECT_EQ(program.close(), 0U);
}

} // namespace
