#include "base/handles.h"
#include "base/system_error.h"
#include "base/wide.h"
#include "service/reload_event.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <sddl.h>

namespace {

using namespace tidelink;

/// The event as a server creates it, with automatic reset.
girder::unique_kernel_handle created(const wchar_t* access)
{
    girder::unique_local_memory descriptor;
    ::ConvertStringSecurityDescriptorToSecurityDescriptorW(access, SDDL_REVISION_1, descriptor.put(), nullptr);
    SECURITY_ATTRIBUTES attributes{
        .nLength = sizeof attributes, .lpSecurityDescriptor = descriptor.get(), .bInheritHandle = FALSE};
    return girder::unique_kernel_handle(::CreateEventW(&attributes, FALSE, FALSE, girder::as_wide(reload_event_name)));
}

TEST(reload_event_test, looking_for_a_server_signals_nothing)
{
    EXPECT_FALSE(can_signal_reload());
    const auto event = created(L"D:(A;;GA;;;WD)");
    EXPECT_TRUE(can_signal_reload());
    EXPECT_EQ(::WaitForSingleObject(event.get(), 0), DWORD{WAIT_TIMEOUT});
    signal_reload();
    EXPECT_EQ(::WaitForSingleObject(event.get(), 0), DWORD{WAIT_OBJECT_0});
}

TEST(reload_event_test, a_server_that_may_not_be_signalled_is_an_error)
{
    constexpr const wchar_t* only_waiting = L"D:(A;;0x00100000;;;WD)";
    const auto event = created(only_waiting);
    EXPECT_FALSE(can_signal_reload());
    try {
        signal_reload();
        ADD_FAILURE() << "signalled";
    } catch (const girder::system_error& error) {
        EXPECT_EQ(error.code(), std::uint32_t{ERROR_ACCESS_DENIED});
    }
}

} // namespace
