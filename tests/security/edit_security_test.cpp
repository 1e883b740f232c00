#include "base/system_error.h"
#include "security/scripted_editor.h"
#include "support/cases.h"

#include <array>

namespace {

using namespace tidelink;
using support::open_editor;

constexpr std::u16string_view default_sddl = u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)";

std::u16string edited(const std::u16string& sddl, const access_editor& editor)
{
    return EditServerSecurity(nullptr, sddl, u"The object", u"Use it", editor);
}

struct person_case {
    const char* name;
    bool (*script)(open_editor&);
    const char* stored; ///< empty: the result is empty
};

class edit_security_test : public testing::TestWithParam<person_case> {};

TEST_P(edit_security_test, ends_in_the_list_to_store)
{
    const std::u16string result = edited(std::u16string(default_sddl), support::scripted_editor(GetParam().script));
    EXPECT_EQ(result.empty() ? "" : support::notation_of(*entries_of(ParseDescriptor(result))), GetParam().stored);
}

constexpr auto persons = std::to_array<person_case>({
    {"ok_without_a_change",
     [](open_editor& editor) {
         EXPECT_EQ(support::notation_of(editor.shown), "+WD:1");
         EXPECT_EQ(editor.title, u"The object");
         EXPECT_EQ(editor.right, u"Use it");
         return true;
     },
     "+SU:c0100004 +WD"},
    {"granting_to_an_account_in_full",
     [](open_editor& editor) {
         editor.shown = support::list_of("+WD:1 +u7:1");
         editor.apply();
         return true;
     },
     "+SU:c0100004 +WD +u7"},
    {"denying_everyone",
     [](open_editor& editor) {
         editor.shown = support::list_of("-WD:1");
         editor.apply();
         return true;
     },
     "+SU:c0100004 -WD"},
    {"removing_every_entry",
     [](open_editor& editor) {
         editor.shown.clear();
         editor.apply();
         return true;
     },
     "+SU:c0100004 -WD:c0000000"},
    {"of_two_applied_lists_the_last_counts",
     [](open_editor& editor) {
         editor.shown = support::list_of("+BA:1");
         editor.apply();
         editor.shown = support::list_of("-u7:1 +BU:1");
         editor.apply();
         return true;
     },
     "+SU:c0100004 -u7 +BU"},
    {"cancel_after_apply_is_a_cancel",
     [](open_editor& editor) {
         editor.shown = support::list_of("+BA:1");
         editor.apply();
         return false;
     },
     ""},
    {"reset_brings_back_what_was_applied_last",
     [](open_editor& editor) {
         editor.shown = support::list_of("+BA:1");
         editor.apply();
         editor.shown.clear();
         editor.reset();
         editor.apply();
         return true;
     },
     "+SU:c0100004 +BA"},
});

INSTANTIATE_TEST_SUITE_P(persons, edit_security_test, testing::ValuesIn(persons), support::name_of_row);

TEST(edit_server_security_test, a_string_that_cannot_be_parsed_does_not_open_the_editor)
{
    bool opened = false;
    const access_editor editor = [&](HWND, ISecurityInformation&) { return opened = true; };
    EXPECT_THROW(edited(u"garbage", editor), girder::system_error);
    EXPECT_FALSE(opened);
}

TEST(edit_server_security_test, a_list_that_the_object_could_not_take_is_an_error)
{
    const access_editor editor = [](HWND, ISecurityInformation& information) {
        SECURITY_DESCRIPTOR unknown_revision{};
        information.SetSecurity(DACL_SECURITY_INFORMATION, &unknown_revision);
        return true;
    };
    EXPECT_THROW(edited(std::u16string(default_sddl), editor), girder::system_error);
}

} // namespace
