#include "base/handles.h"
#include "base/system_error.h"
#include "base/wide.h"
#include "service/reload_event.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <sddl.h>

namespace {

using namespace tidelink;

TEST(reload_event_test, a_server_that_may_not_be_signalled_is_an_error)
{
    constexpr const wchar_t* only_waiting = L"D:(A;;0x00100000;;;WD)";
    girder::unique_local_memory descriptor;
    ::ConvertStringSecurityDescriptorToSecurityDescriptorW(only_waiting, SDDL_REVISION_1, descriptor.put(), nullptr);
    SECURITY_ATTRIBUTES attributes{
        .nLength = sizeof attributes, .lpSecurityDescriptor = descriptor.get(), .bInheritHandle = FALSE};
    const girder::unique_kernel_handle event(
        ::CreateEventW(&attributes, FALSE, FALSE, girder::as_wide(reload_event_name)));
    EXPECT_FALSE(can_signal_reload());
    try {
        signal_reload();
        ADD_FAILURE() << "signalled";
    } catch (const girder::system_error& error) {
        EXPECT_EQ(error.code(), std::uint32_t{ERROR_ACCESS_DENIED});
    }
}

} // namespace
