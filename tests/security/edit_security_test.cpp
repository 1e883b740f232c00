#include "base/system_error.h"
#include "security/scripted_editor.h"
#include "security/server_security_information.h"

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

class server_security_information_test : public testing::Test {
protected:
    ServerSecurityInformation information_{ParseDescriptor(u"D:(A;;0x1;;;WD)"), u"The object", u"Use it"};
};

TEST_F(server_security_information_test, answers_for_its_two_interfaces_alone)
{
    void* object = nullptr;
    for (const IID& id : {IID_ISecurityInformation, IID_IUnknown}) {
        EXPECT_EQ(information_.QueryInterface(id, &object), S_OK);
        EXPECT_EQ(object, static_cast<ISecurityInformation*>(&information_));
    }
    EXPECT_EQ(information_.QueryInterface(IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
}

TEST_F(server_security_information_test, describes_an_object_with_one_right_under_two_names)
{
    SI_OBJECT_INFO info{};
    info.pszServerName = info.pszPageTitle = const_cast<wchar_t*>(L"rest of an earlier call");
    EXPECT_EQ(information_.GetObjectInformation(&info), S_OK);
    EXPECT_EQ(info.dwFlags, 0x220U) << "neither owner nor audit nor inheritance, but a reset";
    EXPECT_EQ(info.pszServerName, nullptr);
    EXPECT_STREQ(info.pszObjectName, L"The object");
    EXPECT_EQ(info.pszPageTitle, nullptr);

    SI_ACCESS* rights = nullptr;
    ULONG count = 0;
    ULONG first = 7;
    EXPECT_EQ(information_.GetAccessRights(nullptr, 0, &rights, &count, &first), S_OK);
    ASSERT_EQ(count, 2U);
    EXPECT_EQ(first, 0U);
    for (const auto& [right, name, flags] :
         {std::tuple(rights[0], L"Full Control", DWORD{0x30000}), std::tuple(rights[1], L"Use it", DWORD{0x20000})}) {
        EXPECT_STREQ(right.pszName, name);
        EXPECT_EQ(right.dwFlags, flags);
        EXPECT_EQ(right.mask, 1U);
        EXPECT_EQ(right.pguid, nullptr);
    }
}

TEST_F(server_security_information_test, maps_all_rights_to_the_one_and_the_other_generic_ones_to_none)
{
    constexpr std::pair<ACCESS_MASK, ACCESS_MASK> mapped[] = {{GENERIC_ALL, 1},
                                                              {GENERIC_READ, 0},
                                                              {GENERIC_WRITE, 0},
                                                              {GENERIC_EXECUTE, 0},
                                                              {SYNCHRONIZE | 1, SYNCHRONIZE | 1}};
    for (const auto& [from, to] : mapped) {
        ACCESS_MASK mask = from;
        EXPECT_EQ(information_.MapGeneric(nullptr, nullptr, &mask), S_OK);
        EXPECT_EQ(mask, to) << from;
    }
}

TEST_F(server_security_information_test, gives_and_takes_a_copy_of_the_access_list_and_nothing_else)
{
    PSECURITY_DESCRIPTOR none = &information_;
    EXPECT_EQ(information_.GetSecurity(OWNER_SECURITY_INFORMATION, &none, FALSE), E_FAIL);
    EXPECT_EQ(none, nullptr);
    girder::unique_local_memory given;
    ASSERT_EQ(information_.GetSecurity(DACL_SECURITY_INFORMATION | OWNER_SECURITY_INFORMATION, given.put(), FALSE),
              S_OK);
    EXPECT_NE(static_cast<SECURITY_DESCRIPTOR*>(given.get())->Control & SE_SELF_RELATIVE, 0);
    EXPECT_LE(::GetSecurityDescriptorLength(given.get()), ::LocalSize(given.get()));
    EXPECT_EQ(entries_of(security_descriptor::copy_of(given.get())), list_of("+WD:1"));
    {
        const security_descriptor other = ParseDescriptor(u"D:(A;;0x1;;;AU)");
        EXPECT_EQ(information_.SetSecurity(OWNER_SECURITY_INFORMATION, other.get()), S_OK);
        EXPECT_EQ(entries_of(information_.edited()), list_of("+WD:1"));
        EXPECT_EQ(information_.SetSecurity(DACL_SECURITY_INFORMATION, self_relative_copy(other.get()).get()), S_OK);
    }
    EXPECT_EQ(entries_of(information_.edited()), list_of("+AU:1"));
}

} // namespace
