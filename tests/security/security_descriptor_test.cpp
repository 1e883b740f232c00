#include "base/system_error.h"
#include "base/utf.h"
#include "base/wide.h"
#include "security/access_fixtures.h"
#include "security/access_notation.h"
#include "security/security_descriptor.h"
#include "support/cases.h"
#include "support/handle_count.h"

#include <sddl.h>

#include <algorithm>
#include <array>

namespace {

using namespace tidelink;
using support::list_of;

/// A descriptor with these entries of any kind, its list written byte by byte.
security_descriptor with_raw_list(const access_list& entries)
{
    struct raw_entry {
        ACE_HEADER header;
        DWORD mask;
        std::array<std::byte, service_sid.size()> rest; // the identity, or the further fields of an object entry
    };
    const auto size = static_cast<WORD>(sizeof(ACL) + entries.size() * sizeof(raw_entry));
    girder::unique_local_memory memory{::LocalAlloc(LPTR, size)};
    auto* const list = static_cast<ACL*>(memory.get());
    *list = {.AclRevision = ACL_REVISION_DS,
             .Sbz1 = 0,
             .AclSize = size,
             .AceCount = static_cast<WORD>(entries.size()),
             .Sbz2 = 0};
    auto* raw = reinterpret_cast<raw_entry*>(list + 1);
    for (const access_entry& entry : entries) {
        raw->header = {.AceType = static_cast<BYTE>(entry.kind), .AceFlags = entry.flags, .AceSize = sizeof *raw};
        raw->mask = entry.mask;
        std::ranges::copy(entry.sid, raw++->rest.begin());
    }
    return security_descriptor::with_list(std::move(memory));
}

/// The list as the system reads it from the descriptor's string.
std::optional<access_list> list_by_string(const security_descriptor& descriptor)
{
    return entries_of(ParseDescriptor(FormatDescriptor(descriptor).value()));
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

class security_descriptor_test : public testing::TestWithParam<support::access_fixture> {};

TEST_P(security_descriptor_test, is_read_shown_and_saved)
{
    const auto& notation = GetParam().stored;
    const security_descriptor stored = notation ? with_raw_list(list_of(*notation)) : ParseDescriptor(u"O:BAG:SY");
    EXPECT_EQ(entries_of(stored), notation ? std::optional(list_of(*notation)) : std::nullopt);
    const security_descriptor edited = ToEditorForm(stored);
    EXPECT_EQ(list_by_string(edited), list_of(GetParam().editor, support::in_editor));
    const security_descriptor saved = FromEditorForm(edited);
    EXPECT_EQ(list_by_string(saved), list_of(GetParam().saved));
    EXPECT_EQ(FormatDescriptor(saved)->substr(0, 3), u"D:(") << "nothing but the list, and no control flags";
}

INSTANTIATE_TEST_SUITE_P(fixtures, security_descriptor_test, testing::ValuesIn(support::access_fixtures()),
                         support::name_of_row);

TEST(descriptor_test, a_null_list_lets_everyone_in_and_is_empty_in_the_editor)
{
    SECURITY_DESCRIPTOR open{};
    ::InitializeSecurityDescriptor(&open, SECURITY_DESCRIPTOR_REVISION);
    ::SetSecurityDescriptorDacl(&open, TRUE, nullptr, FALSE);
    const security_descriptor descriptor = security_descriptor::copy_of(&open);
    EXPECT_EQ(entries_of(descriptor), std::nullopt);
    EXPECT_EQ(entries_of(ToEditorForm(descriptor)), access_list());
    EXPECT_EQ(entries_of(FromEditorForm(descriptor)), list_of("own closed"));
}

TEST(descriptor_test, a_copy_keeps_every_part_and_outlives_its_original)
{
    const std::u16string whole = u"O:BAG:SYD:(A;;0xc0100000;;;WD)S:(AU;SAFA;0xc0100000;;;WD)";
    const security_descriptor copy =
        security_descriptor::copy_of(self_relative_copy(ParseDescriptor(whole).get()).get());
    EXPECT_EQ(FormatDescriptor(copy), whole);
    EXPECT_EQ(audit_entry_count(copy), 1U);
    EXPECT_EQ(audit_entry_count(ToEditorForm(copy)), 0U);
    EXPECT_EQ(FormatDescriptor(security_descriptor()), std::nullopt) << "without a descriptor there is no string";
}

TEST(descriptor_test, a_string_that_cannot_be_parsed_has_the_systems_code)
{
    for (const char16_t* const sddl : {u"garbage", u"D:(A;;0xc0100000;;;nobody)"}) {
        girder::unique_local_memory parsed;
        EXPECT_FALSE(::ConvertStringSecurityDescriptorToSecurityDescriptorW(girder::as_wide(sddl), SDDL_REVISION_1,
                                                                            parsed.put(), nullptr));
        const DWORD expected = ::GetLastError();
        EXPECT_EQ(code_of_error([&] { ParseDescriptor(sddl); }), expected) << girder::to_utf8(sddl);
    }
}

TEST(descriptor_test, an_entry_that_does_not_fit_is_an_invalid_argument)
{
    constexpr std::size_t most = (0xFFFF - sizeof(ACL)) / 20;
    const auto full = security_descriptor::with_entries(access_list(most, list_of("+WD:1")[0]));
    EXPECT_EQ(entries_of(ToEditorForm(full))->size(), most);
    EXPECT_EQ(code_of_error([&] { FromEditorForm(full); }), static_cast<std::uint32_t>(E_INVALIDARG))
        << "there is no room for the service's entry";
}

TEST(descriptor_test, an_entry_whose_identity_is_cut_off_is_refused)
{
    const security_descriptor descriptor = with_raw_list(list_of("+WD"));
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    ACL* list = nullptr;
    ASSERT_TRUE(::GetSecurityDescriptorDacl(descriptor.get(), &present, &list, &defaulted));
    for (const WORD size : {WORD{4}, WORD{8}, WORD{12}, WORD{16}}) {
        reinterpret_cast<ACE_HEADER*>(list + 1)->AceSize = size;
        EXPECT_NE(code_of_error([&] { entries_of(descriptor); }), 0U) << size;
    }
}

/// How many blocks of the process heap are in use; LocalAlloc takes its memory there.
std::size_t heap_use()
{
    std::size_t blocks = 0;
    PROCESS_HEAP_ENTRY entry{};
    while (::HeapWalk(::GetProcessHeap(), &entry))
        blocks += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1 : 0;
    return blocks;
}

TEST(descriptor_test, five_hundred_translations_leave_nothing_behind)
{
    const std::vector<support::access_fixture> fixtures = support::access_fixtures();
    const auto translate_all = [&] {
        for (const support::access_fixture& fixture : fixtures)
            list_by_string(FromEditorForm(ToEditorForm(with_raw_list(list_of(fixture.stored.value_or(""))))));
        EXPECT_NE(code_of_error([] { ParseDescriptor(u"garbage"); }), 0U);
    };
    translate_all();
    const std::size_t memory = heap_use();
    const std::size_t handles = support::handle_count();
    for (std::size_t done = 0; done < 500; done += fixtures.size())
        translate_all();
    EXPECT_EQ(heap_use(), memory);
    EXPECT_EQ(support::handle_count(), handles);
}

} // namespace
