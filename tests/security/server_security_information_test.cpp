#include "base/handles.h"
#include "base/wide.h"
#include "security/access_fixtures.h"
#include "security/server_security_information.h"

#include <gtest/gtest.h>

namespace {

using namespace tidelink;

std::string notation_of(PSECURITY_DESCRIPTOR descriptor)
{
    return support::notation_of(entries_of(security_descriptor::copy_of(descriptor)).value());
}

class server_security_information_test : public testing::Test {
protected:
    static constexpr std::u16string_view everyone_right = u"D:(A;;0x1;;;WD)";

    std::string given(SECURITY_INFORMATION requested, BOOL default_wanted)
    {
        girder::unique_local_memory descriptor;
        if (FAILED(information_.GetSecurity(requested, descriptor.put(), default_wanted)))
            return "failed";
        SECURITY_DESCRIPTOR_CONTROL control = 0;
        DWORD revision = 0;
        ::GetSecurityDescriptorControl(descriptor.get(), &control, &revision);
        EXPECT_NE(control & SE_SELF_RELATIVE, 0);
        EXPECT_LE(::GetSecurityDescriptorLength(descriptor.get()), ::LocalSize(descriptor.get()));
        return notation_of(descriptor.get());
    }

    ServerSecurityInformation information_{ParseDescriptor(std::u16string(everyone_right)), u"The object", u"Use it"};
};

TEST_F(server_security_information_test, answers_for_its_two_interfaces_and_counts_no_references)
{
    void* object = nullptr;
    EXPECT_EQ(information_.QueryInterface(IID_ISecurityInformation, &object), S_OK);
    EXPECT_EQ(object, static_cast<ISecurityInformation*>(&information_));
    EXPECT_EQ(information_.QueryInterface(IID_IUnknown, &object), S_OK);
    EXPECT_EQ(object, static_cast<ISecurityInformation*>(&information_));
    EXPECT_EQ(information_.QueryInterface(IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(information_.AddRef(), 2U);
    EXPECT_EQ(information_.Release(), 2U);
    EXPECT_EQ(information_.Release(), 2U);
}

TEST_F(server_security_information_test, describes_an_object_with_permissions_alone)
{
    SI_OBJECT_INFO info{};
    info.pszServerName = info.pszPageTitle = const_cast<wchar_t*>(L"rest of an earlier call");
    EXPECT_EQ(information_.GetObjectInformation(&info), S_OK);
    EXPECT_EQ(info.dwFlags, 0x220U);
    EXPECT_EQ(info.hInstance, ::GetModuleHandleW(nullptr));
    EXPECT_EQ(info.pszServerName, nullptr);
    EXPECT_STREQ(info.pszObjectName, L"The object");
    EXPECT_EQ(info.pszPageTitle, nullptr);
}

TEST_F(server_security_information_test, has_one_right_under_two_names)
{
    SI_ACCESS* rights = nullptr;
    ULONG count = 0;
    ULONG first = 7;
    EXPECT_EQ(information_.GetAccessRights(nullptr, 0, &rights, &count, &first), S_OK);
    ASSERT_EQ(count, 2U);
    EXPECT_EQ(first, 0U);
    EXPECT_STREQ(rights[0].pszName, L"Full Control");
    EXPECT_STREQ(rights[1].pszName, L"Use it");
    EXPECT_EQ(rights[0].dwFlags, 0x30000U);
    EXPECT_EQ(rights[1].dwFlags, 0x20000U);
    for (ULONG i = 0; i < count; ++i) {
        EXPECT_EQ(rights[i].mask, 1U);
        EXPECT_EQ(rights[i].pguid, nullptr);
    }
}

TEST_F(server_security_information_test, maps_all_rights_to_the_one_and_the_other_generic_ones_to_none)
{
    struct mapping {
        ACCESS_MASK from;
        ACCESS_MASK to;
    };
    for (const auto& [from, to] :
         {mapping{GENERIC_ALL, 1}, mapping{GENERIC_READ | GENERIC_WRITE | GENERIC_EXECUTE, 0},
          mapping{GENERIC_ALL | GENERIC_READ, 1}, mapping{1, 1}, mapping{SYNCHRONIZE, SYNCHRONIZE}}) {
        ACCESS_MASK mask = from;
        UCHAR flags = 0;
        EXPECT_EQ(information_.MapGeneric(nullptr, &flags, &mask), S_OK);
        EXPECT_EQ(mask, to) << from;
    }
}

TEST_F(server_security_information_test, gives_the_access_list_and_nothing_else)
{
    EXPECT_EQ(given(DACL_SECURITY_INFORMATION, FALSE), "+WD:1");
    EXPECT_EQ(given(DACL_SECURITY_INFORMATION | OWNER_SECURITY_INFORMATION, FALSE), "+WD:1");
    for (const long other : {OWNER_SECURITY_INFORMATION, GROUP_SECURITY_INFORMATION, SACL_SECURITY_INFORMATION}) {
        PSECURITY_DESCRIPTOR descriptor = &information_;
        EXPECT_EQ(information_.GetSecurity(static_cast<SECURITY_INFORMATION>(other), &descriptor, FALSE), E_FAIL);
        EXPECT_EQ(descriptor, nullptr);
    }
}

TEST_F(server_security_information_test, takes_over_the_access_list_that_is_set_last)
{
    const security_descriptor first = ParseDescriptor(u"D:(A;;0x1;;;BA)");
    const security_descriptor second = ParseDescriptor(u"D:(D;;0x1;;;BU)");
    EXPECT_EQ(information_.SetSecurity(DACL_SECURITY_INFORMATION, first.get()), S_OK);
    EXPECT_EQ(given(DACL_SECURITY_INFORMATION, TRUE), "+BA:1") << "a reset brings back what is held at that moment";
    EXPECT_EQ(information_.SetSecurity(OWNER_SECURITY_INFORMATION, second.get()), S_OK);
    EXPECT_EQ(notation_of(information_.edited().get()), "+BA:1");
    EXPECT_EQ(information_.SetSecurity(DACL_SECURITY_INFORMATION, self_relative_copy(second.get()).get()), S_OK);
    EXPECT_EQ(notation_of(information_.edited().get()), "-BU:1");
}

TEST_F(server_security_information_test, a_list_that_cannot_be_taken_over_is_told_at_the_end)
{
    SECURITY_DESCRIPTOR unknown_revision{};
    EXPECT_EQ(information_.SetSecurity(DACL_SECURITY_INFORMATION, &unknown_revision), S_OK);
    EXPECT_ANY_THROW(information_.edited());
    const security_descriptor good = ParseDescriptor(u"D:(A;;0x1;;;BA)");
    EXPECT_EQ(information_.SetSecurity(DACL_SECURITY_INFORMATION, good.get()), S_OK);
    EXPECT_EQ(notation_of(information_.edited().get()), "+BA:1");
}

TEST_F(server_security_information_test, knows_no_inheritance)
{
    SI_INHERIT_TYPE* types = nullptr;
    ULONG count = 0;
    EXPECT_EQ(information_.GetInheritTypes(&types, &count), E_NOTIMPL);
    EXPECT_EQ(information_.PropertySheetPageCallback(nullptr, PSPCB_SI_INITDIALOG, SI_PAGE_PERM), S_OK);
}

} // namespace
