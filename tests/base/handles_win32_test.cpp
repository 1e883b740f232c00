#include "base/handles.h"
#include "base/system_error.h"
#include "base/system_library.h"

#include <gtest/gtest.h>

namespace {

using namespace girder;

TEST(handles_win32_test, closing_keeps_the_last_error)
{
    unique_kernel_handle event(::CreateEventW(nullptr, TRUE, FALSE, nullptr));
    ASSERT_TRUE(event);
    ::SetLastError(ERROR_FILE_NOT_FOUND);
    event.reset();
    EXPECT_EQ(::GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST(handles_win32_death_test, closing_a_foreign_handle_ends_the_process)
{
    EXPECT_DEATH(unique_kernel_handle{reinterpret_cast<HANDLE>(std::uintptr_t{0xDEAD0})}.reset(), "");
}

TEST(system_library_test, missing_library_and_function_are_errors)
{
    EXPECT_THROW(system_library(u"no_such_library.dll"), system_error);
    const system_library kernel(u"kernel32.dll");
    EXPECT_THROW(static_cast<void>(kernel.function<void()>("NoSuchFunction")), system_error);
    EXPECT_EQ(kernel.optional_function<void()>("NoSuchFunction"), nullptr);
}

} // namespace
