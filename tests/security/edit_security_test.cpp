#include "base/system_error.h"
#include "security/scripted_editor.h"

namespace {

using namespace tidelink;
using support::list_of;
using support::open_editor;

std::u16string edited(const access_editor& editor, const std::u16string& sddl)
{
    return EditServerSecurity(nullptr, sddl, u"The object", u"Use it", editor);
}

/// The stored list after a person has edited the default one.
template <typename Script>
std::optional<access_list> edited_list(Script script)
{
    const std::u16string sddl = edited(support::scripted_editor(script), u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)");
    return sddl.empty() ? std::nullopt : entries_of(ParseDescriptor(sddl));
}

TEST(edit_security_test, what_was_applied_last_counts_when_the_editor_closes_with_ok)
{
    for (const auto& [applied, stored] : {std::pair("+WD +u7", "own +WD +u7"), std::pair("-WD", "own -WD"),
                                          std::pair("", "own closed"), std::pair("-u7 +AU", "own -u7 +AU")})
        for (const bool ok : {true, false})
            EXPECT_EQ(edited_list([&](open_editor& editor) {
                          editor.apply("+u9");
                          editor.apply(applied);
                          editor.reload(TRUE);
                          EXPECT_EQ(editor.shown, list_of(applied, support::in_editor)) << "after a reset";
                          return ok;
                      }),
                      ok ? std::optional(list_of(stored)) : std::nullopt)
                << applied;
}

TEST(edit_security_test, a_list_that_could_not_be_taken_over_is_an_error_until_another_is_applied)
{
    SECURITY_DESCRIPTOR unknown_revision{};
    const access_editor failing = [&](HWND, ISecurityInformation& information) {
        EXPECT_EQ(information.SetSecurity(DACL_SECURITY_INFORMATION, &unknown_revision), S_OK);
        return true;
    };
    EXPECT_THROW(edited(failing, u"D:"), girder::system_error);
    EXPECT_NO_THROW(edited(
        [&](HWND owner, ISecurityInformation& information) {
            failing(owner, information);
            return support::editor_that_sets("+AU")(owner, information);
        },
        u"D:"));
}

} // namespace
