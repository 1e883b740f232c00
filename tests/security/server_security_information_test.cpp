#include "security/access_notation.h"
#include "security/server_security_information.h"

namespace {

using namespace tidelink;
using support::list_of;

class server_security_information_test : public testing::Test {
protected:
    ServerSecurityInformation information_{ParseDescriptor(u"D:(A;;0x1;;;WD)"), u"The object", u"Use it"};
};

TEST_F(server_security_information_test, answers_for_its_two_interfaces_and_counts_no_references)
{
    void* object = nullptr;
    for (const IID& id : {IID_ISecurityInformation, IID_IUnknown}) {
        EXPECT_EQ(information_.QueryInterface(id, &object), S_OK);
        EXPECT_EQ(object, static_cast<ISecurityInformation*>(&information_));
    }
    EXPECT_EQ(information_.QueryInterface(IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(information_.AddRef(), 2U);
    EXPECT_EQ(information_.Release(), 2U);
    EXPECT_EQ(information_.Release(), 2U);
}

TEST_F(server_security_information_test, describes_an_object_with_permissions_alone_and_no_inheritance)
{
    SI_OBJECT_INFO info{};
    info.pszServerName = info.pszPageTitle = const_cast<wchar_t*>(L"rest of an earlier call");
    EXPECT_EQ(information_.GetObjectInformation(&info), S_OK);
    EXPECT_EQ(info.dwFlags, 0x220U);
    EXPECT_EQ(info.hInstance, ::GetModuleHandleW(nullptr));
    EXPECT_EQ(info.pszServerName, nullptr);
    EXPECT_STREQ(info.pszObjectName, L"The object");
    EXPECT_EQ(info.pszPageTitle, nullptr);
    SI_INHERIT_TYPE* types = nullptr;
    ULONG count = 0;
    EXPECT_EQ(information_.GetInheritTypes(&types, &count), E_NOTIMPL);
    EXPECT_EQ(information_.PropertySheetPageCallback(nullptr, PSPCB_SI_INITDIALOG, SI_PAGE_PERM), S_OK);
}

TEST_F(server_security_information_test, has_one_right_under_two_names)
{
    SI_ACCESS* rights = nullptr;
    ULONG count = 0;
    ULONG first = 7;
    EXPECT_EQ(information_.GetAccessRights(nullptr, 0, &rights, &count, &first), S_OK);
    ASSERT_EQ(count, 2U);
    EXPECT_EQ(first, 0U);
    const auto expect_right = [](const SI_ACCESS& right, const wchar_t* name, DWORD flags) {
        EXPECT_STREQ(right.pszName, name);
        EXPECT_EQ(right.dwFlags, flags);
        EXPECT_EQ(right.mask, 1U);
        EXPECT_EQ(right.pguid, nullptr);
    };
    expect_right(rights[0], L"Full Control", 0x30000);
    expect_right(rights[1], L"Use it", 0x20000);
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

TEST_F(server_security_information_test, gives_the_access_list_in_one_piece_and_nothing_else)
{
    for (const SECURITY_INFORMATION other : {1U, 2U, 8U}) {
        PSECURITY_DESCRIPTOR none = &information_;
        EXPECT_EQ(information_.GetSecurity(other, &none, FALSE), E_FAIL);
        EXPECT_EQ(none, nullptr);

        girder::unique_local_memory given;
        ASSERT_EQ(information_.GetSecurity(DACL_SECURITY_INFORMATION | other, given.put(), FALSE), S_OK);
        EXPECT_NE(static_cast<SECURITY_DESCRIPTOR*>(given.get())->Control & SE_SELF_RELATIVE, 0);
        EXPECT_LE(::GetSecurityDescriptorLength(given.get()), ::LocalSize(given.get()));
        EXPECT_EQ(entries_of(security_descriptor::copy_of(given.get())), list_of("+WD:1"));
    }
}

TEST_F(server_security_information_test, takes_over_a_copy_of_the_access_list_and_nothing_else)
{
    {
        const security_descriptor other = ParseDescriptor(u"D:(A;;0x1;;;AU)");
        EXPECT_EQ(information_.SetSecurity(OWNER_SECURITY_INFORMATION, other.get()), S_OK);
        EXPECT_EQ(entries_of(information_.edited()), list_of("+WD:1"));
        EXPECT_EQ(information_.SetSecurity(DACL_SECURITY_INFORMATION, self_relative_copy(other.get()).get()), S_OK);
    }
    EXPECT_EQ(entries_of(information_.edited()), list_of("+AU:1"));
}

} // namespace
