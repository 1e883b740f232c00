#include "base/system_error.h"
#include "base/utf.h"
#include "base/wide.h"
#include "security/access_fixtures.h"
#include "security/raw_list.h"
#include "security/security_descriptor.h"
#include "support/cases.h"
#include "support/handle_count.h"
#include "support/heap_use.h"

#include <gtest/gtest.h>
#include <sddl.h>

#include <array>

namespace {

using namespace tidelink;
using support::list_of;
using support::notation_of;

std::optional<std::string> notation_of_list(const security_descriptor& descriptor)
{
    const std::optional<access_list> entries = entries_of(descriptor);
    return entries ? std::optional(notation_of(*entries)) : std::nullopt;
}

/// What the descriptor's string describes, as the system reads it.
std::optional<std::string> notation_by_string(const security_descriptor& descriptor)
{
    return notation_of_list(ParseDescriptor(FormatDescriptor(descriptor).value()));
}

template <typename Action>
std::uint32_t code_of_error(Action action)
{
    try {
        action();
    } catch (const girder::system_error& error) {
        return error.code();
    }
    return 0;
}

security_descriptor with_list(std::string_view notation)
{
    return security_descriptor::with_list(support::raw_list(list_of(notation)));
}

class security_descriptor_test : public testing::TestWithParam<support::access_fixture> {};

TEST_P(security_descriptor_test, is_read_shown_and_saved)
{
    const security_descriptor descriptor =
        GetParam().stored ? with_list(*GetParam().stored) : ParseDescriptor(u"O:BAG:SY");
    EXPECT_EQ(notation_of_list(descriptor), GetParam().stored);
    const security_descriptor edited = ToEditorForm(descriptor);
    EXPECT_EQ(notation_by_string(edited), GetParam().editor);
    const security_descriptor saved = FromEditorForm(edited);
    EXPECT_EQ(notation_by_string(saved), GetParam().saved);
    EXPECT_EQ(FormatDescriptor(saved)->substr(0, 3), u"D:(") << "nothing but the list, and no control flags";
}

INSTANTIATE_TEST_SUITE_P(lists, security_descriptor_test, testing::ValuesIn(support::access_fixtures()),
                         support::name_of_row);

struct string_case {
    const char* name;
    const char16_t* sddl;
    const char* stored;
    const char* saved;
};

class descriptor_string_test : public testing::TestWithParam<string_case> {};

TEST_P(descriptor_string_test, is_parsed_and_saved)
{
    const security_descriptor descriptor = ParseDescriptor(GetParam().sddl);
    EXPECT_EQ(notation_of_list(descriptor), GetParam().stored);
    EXPECT_EQ(notation_by_string(FromEditorForm(ToEditorForm(descriptor))), GetParam().saved);
}

INSTANTIATE_TEST_SUITE_P(
    strings, descriptor_string_test,
    testing::ValuesIn(std::to_array<string_case>({
        {"the_default", u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)", "+SU:c0100004 +WD", "+SU:c0100004 +WD"},
        {"an_empty_list", u"D:", "", "+SU:c0100004 -WD:c0000000"},
        {"a_protected_list", u"D:P(A;;0xc0100000;;;BU)", "+BU", "+SU:c0100004 +BU"},
        {"inherited_entries", u"D:AI(D;OICIID;0xc0100000;;;S-1-5-21-1-2-3-9)(A;IO;GA;;;BA)", "-u9/13 +BA:10000000/8",
         "+SU:c0100004 -u9/13 +BA/8"},
        {"names_of_rights", u"D:(A;;FA;;;BA)(D;;GRGW;;;WD)", "+BA:1f01ff -WD:c0000000", "+SU:c0100004 -WD"},
        {"audit_entries_are_not_kept", u"D:(A;;0xc0100000;;;WD)S:(AU;SAFA;0xc0100000;;;WD)", "+WD", "+SU:c0100004 +WD"},
    })),
    support::name_of_row);

TEST(descriptor_test, the_well_known_sids_are_the_systems)
{
    for (const auto& [text, sid] : {std::pair(L"S-1-5-6", service_sid), std::pair(L"S-1-1-0", everyone_sid)}) {
        girder::unique_local_memory expected;
        ASSERT_TRUE(::ConvertStringSidToSidW(text, expected.put()));
        EXPECT_TRUE(::EqualSid(const_cast<std::byte*>(sid.data()), expected.get()));
    }
}

TEST(descriptor_test, a_null_list_lets_everyone_in_and_is_empty_in_the_editor)
{
    SECURITY_DESCRIPTOR open{};
    ::InitializeSecurityDescriptor(&open, SECURITY_DESCRIPTOR_REVISION);
    ::SetSecurityDescriptorDacl(&open, TRUE, nullptr, FALSE);
    const security_descriptor descriptor = security_descriptor::copy_of(&open);
    EXPECT_EQ(entries_of(descriptor), std::nullopt);
    EXPECT_EQ(notation_of_list(ToEditorForm(descriptor)), "");
    EXPECT_EQ(notation_of_list(FromEditorForm(descriptor)), "+SU:c0100004 -WD:c0000000");
}

TEST(descriptor_test, a_copy_keeps_every_part_and_outlives_its_original)
{
    constexpr std::u16string_view whole = u"O:BAG:SYD:(A;;0xc0100000;;;WD)S:(AU;SAFA;0xc0100000;;;WD)";
    security_descriptor copy;
    {
        const security_descriptor original = ParseDescriptor(std::u16string(whole));
        const girder::unique_local_memory in_one_piece = self_relative_copy(original.get());
        copy = security_descriptor::copy_of(in_one_piece.get());
    }
    EXPECT_EQ(girder::to_utf8(FormatDescriptor(copy).value()), girder::to_utf8(whole));
    EXPECT_EQ(audit_entry_count(copy), 1U);
    EXPECT_EQ(audit_entry_count(ToEditorForm(copy)), 0U);
}

TEST(descriptor_test, without_a_descriptor_there_is_no_string)
{
    EXPECT_EQ(FormatDescriptor(security_descriptor()), std::nullopt);
}

TEST(descriptor_test, a_string_that_cannot_be_parsed_has_the_systems_code)
{
    for (const std::u16string sddl :
         {u"garbage", u"D:(A;;0xc0100000;;;WD", u"D:(A;;0xc0100000;;;nobody)", u"D:(A;;;WD)"}) {
        girder::unique_local_memory parsed;
        ASSERT_FALSE(::ConvertStringSecurityDescriptorToSecurityDescriptorW(girder::as_wide(sddl), SDDL_REVISION_1,
                                                                            parsed.put(), nullptr));
        const DWORD expected = ::GetLastError();
        EXPECT_EQ(code_of_error([&] { ParseDescriptor(sddl); }), expected) << girder::to_utf8(sddl);
    }
}

/// As many entries of 20 bytes as a list has room for.
std::string full_list(std::string_view entry)
{
    constexpr std::size_t most = (0xFFFF - sizeof(ACL)) / 20;
    std::string notation;
    for (std::size_t i = 0; i < most; ++i)
        notation += entry;
    return notation;
}

TEST(descriptor_test, an_entry_that_does_not_fit_is_an_invalid_argument)
{
    const security_descriptor full = with_list(full_list("+WD:1 "));
    EXPECT_EQ(code_of_error([&] { FromEditorForm(full); }), static_cast<std::uint32_t>(E_INVALIDARG))
        << "there is no room for the service's entry";
    EXPECT_EQ(entries_of(ToEditorForm(full))->size(), entries_of(full)->size());
}

TEST(descriptor_test, an_entry_whose_identity_is_cut_off_is_refused)
{
    girder::unique_local_memory list = support::raw_list(list_of("+WD"));
    auto* const entry = reinterpret_cast<ACE_HEADER*>(static_cast<ACL*>(list.get()) + 1);
    const security_descriptor descriptor = security_descriptor::with_list(std::move(list));
    for (const WORD size : {WORD{4}, WORD{8}, WORD{12}, WORD{16}}) {
        entry->AceSize = size;
        EXPECT_NE(code_of_error([&] { entries_of(descriptor); }), 0U) << size;
    }
}

TEST(descriptor_test, five_hundred_translations_leave_nothing_behind)
{
    const auto translate_all = [] {
        for (const support::access_fixture& fixture : support::access_fixtures())
            FormatDescriptor(FromEditorForm(ToEditorForm(with_list(fixture.stored.value_or("")))));
        ParseDescriptor(u"O:BAG:SYD:(A;;0xc0100000;;;WD)S:(AU;SAFA;GA;;;WD)");
        EXPECT_NE(code_of_error([] { ParseDescriptor(u"garbage"); }), 0U);
    };
    translate_all();
    const std::size_t memory = support::heap_use();
    const std::size_t handles = support::handle_count();
    for (std::size_t done = 0; done < 500; done += support::access_fixtures().size())
        translate_all();
    EXPECT_EQ(support::heap_use(), memory);
    EXPECT_EQ(support::handle_count(), handles);
}

} // namespace
