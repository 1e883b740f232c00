#include "base/system_error.h"
#include "security/access_fixtures.h"
#include "security/access_notation.h"
#include "security/security_descriptor.h"
#include "support/handle_count.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace tidelink;
using support::list_of;

/// A descriptor with these entries of any kind, made from one with allowing entries of the same size.
security_descriptor with_raw_list(const access_list& entries)
{
    access_list allowing = entries;
    for (access_entry& entry : allowing) {
        entry.kind = access_kind::allowed;
        entry.sid.resize(service_sid.size(), std::byte{1});
    }
    security_descriptor made = security_descriptor::with_entries(allowing);
    BOOL ignored = FALSE;
    ACL* list = nullptr;
    ::GetSecurityDescriptorDacl(made.get(), &ignored, &list, &ignored);
    for (DWORD index = 0; index < entries.size(); ++index) {
        void* entry = nullptr;
        EXPECT_TRUE(::GetAce(list, index, &entry));
        static_cast<ACE_HEADER*>(entry)->AceType = static_cast<BYTE>(entries[index].kind);
    }
    return made;
}

/// The list as the system reads it from the descriptor's string.
std::optional<access_list> list_by_string(const security_descriptor& descriptor)
{
    return entries_of(ParseDescriptor(FormatDescriptor(descriptor).value()));
}

void expect_translated(const support::access_fixture& fixture)
{
    SCOPED_TRACE(fixture.name);
    const auto& notation = fixture.stored;
    const security_descriptor stored =
        notation ? with_raw_list(list_of(*notation)) : security_descriptor::with_list(girder::unique_local_memory());
    EXPECT_EQ(entries_of(stored), notation ? std::optional(list_of(*notation)) : std::nullopt);
    const security_descriptor edited = ToEditorForm(stored);
    EXPECT_EQ(list_by_string(edited), list_of(fixture.editor, support::in_editor));
    const security_descriptor saved = FromEditorForm(edited);
    EXPECT_EQ(list_by_string(saved), list_of(fixture.saved));
    EXPECT_EQ(FormatDescriptor(saved)->substr(0, 3), u"D:(") << "nothing but the list, and no control flags";
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

TEST(security_descriptor_test, is_read_shown_and_saved_and_five_hundred_times_leave_nothing_behind)
{
    const std::vector<support::access_fixture> fixtures = support::access_fixtures();
    const auto translate_all = [&fixtures] {
        std::ranges::for_each(fixtures, expect_translated);
        EXPECT_THROW(ParseDescriptor(u"garbage"), girder::system_error);
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
