#include "base/debug_log.h"

#include <gtest/gtest.h>

namespace {

using girder::failure_line;

TEST(debug_log_test, line_names_place_thread_code_and_what_else_is_known)
{
    const auto here = std::source_location::current();
    const std::u16string place = u"debug_log_test.cpp(11) tid(1f) ";
    EXPECT_EQ(failure_line({.code = 0x8007000E}, 0x1F, here), place + u"8007000E \n");
    EXPECT_EQ(failure_line({.code = 5, .text = u"Access denied.", .message = u"saving", .context = "RegCreateKeyExW"},
                           0x1F, here),
              place + u"00000005 Access denied. Msg:[saving] CallContext:[RegCreateKeyExW]\n");
}

} // namespace
