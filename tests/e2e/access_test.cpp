#include "fixture.h"

namespace {

using namespace e2e;

using access_test = machine_test;

TEST_F(access_test, ok_in_the_systems_editor_is_a_change_and_apply_stores_the_normalised_list)
{
    const auto stored = [] { return settings_key::read()[u"securityDescriptor"]; };
    const stored_value before = text(u"D:(A;;0xc0100000;;;BA)");
    settings_key::write(u"securityDescriptor", before);
    const utility program;
    EXPECT_EQ(program.control(id::access_words).text(), u"1 account or group");
    program.control(id::security).post_click();
    utility::answer(program.access_editor(), id::ok);
    EXPECT_TRUE(ui_driver::eventually([&] { return program.apply_enabled(); }));
    EXPECT_EQ(stored(), before) << "not before Apply";
    program.control(id::apply).click();
    EXPECT_FALSE(program.apply_enabled());
    EXPECT_EQ(stored(), text(u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;BA)"));
}

} // namespace
