#include "security/scripted_editor.h"
#include "security/server_security_information.h"

namespace {

using namespace tidelink;
using support::list_of;
using support::open_editor;

/// The stored list after a person has edited the default one.
template <typename Script>
std::optional<access_list> edited_list(Script script)
{
    const std::u16string sddl = EditServerSecurity(nullptr, u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)",
                                                   u"The object", u"Use it", support::scripted_editor(script));
    return sddl.empty() ? std::nullopt : entries_of(ParseDescriptor(sddl));
}

TEST(edit_security_test, what_was_applied_last_counts_when_the_editor_closes_with_ok)
{
    for (const auto& [applied, stored] :
         {std::pair("+WD +u7", "own +WD +u7"), std::pair("-WD", "own -WD"), std::pair("", "own closed"),
          std::pair("+AU -u1 +WD/10 -AU", "own +AU -u1 +WD/10 -AU"), std::pair("+WD:0", "own closed"),
          std::pair("+u1:2 -u2:fffffffe +u3:3", "own +u3")})
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

TEST(server_security_information_test, offers_the_editor_a_reset_and_one_right_under_two_names_and_no_more)
{
    ServerSecurityInformation information(ParseDescriptor(u"D:(A;;0x1;;;WD)"), u"The object", u"Use it");
    void* object = nullptr;
    EXPECT_EQ(information.QueryInterface(IID_ISecurityInformation, &object), S_OK);
    EXPECT_EQ(object, static_cast<ISecurityInformation*>(&information));
    EXPECT_EQ(information.QueryInterface(IID_IDispatch, &object), E_NOINTERFACE);

    SI_OBJECT_INFO info{};
    EXPECT_EQ(information.GetObjectInformation(&info), S_OK);
    EXPECT_EQ(info.dwFlags, 0x220U) << "neither owner nor audit nor inheritance, but a reset";

    SI_ACCESS* rights = nullptr;
    ULONG count = 0;
    ULONG first = 7;
    EXPECT_EQ(information.GetAccessRights(nullptr, 0, &rights, &count, &first), S_OK);
    ASSERT_EQ(count, 2U);
    EXPECT_EQ(first, 0U);
    for (const auto& [right, name, flags] :
         {std::tuple(rights[0], L"Full Control", DWORD{0x30000}), std::tuple(rights[1], L"Use it", DWORD{0x20000})}) {
        EXPECT_STREQ(right.pszName, name);
        EXPECT_EQ(right.dwFlags, flags);
        EXPECT_EQ(right.mask, 1U);
    }
    for (const auto& [wanted, mapped] : {std::pair<ACCESS_MASK, ACCESS_MASK>(GENERIC_ALL, 1),
                                         {GENERIC_READ | GENERIC_WRITE | GENERIC_EXECUTE, 0},
                                         {SYNCHRONIZE | 1, SYNCHRONIZE | 1}}) {
        ACCESS_MASK mask = wanted;
        EXPECT_EQ(information.MapGeneric(nullptr, nullptr, &mask), S_OK);
        EXPECT_EQ(mask, mapped) << wanted;
    }
}

} // namespace
