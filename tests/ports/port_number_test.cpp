#include "ports/port_number.h"

#include <gtest/gtest.h>

#include <span>
#include <string_view>

namespace {

using namespace std::literals;
using tidelink::port_number;

constexpr std::uint32_t registry_string = 1;
constexpr std::uint32_t registry_expandable_string = 2;
constexpr std::uint32_t registry_binary = 3;

TEST(port_number_test, is_of_what_follows_the_third_character_of_a_text)
{
    for (const auto& [stored, number] : {
             std::pair(u"COM12\0"sv, 12U),
             {u"COM256\0"sv, 256U},
             {u"LPT1\0"sv, 1U},
             {u"1237\0"sv, 7U},
             {u"COM7x8\0"sv, 7U},
             {u"COM7\0\u0038\0"sv, 7U},
             {u"COM3\u0133\0"sv, 3U}, // both bytes of a character count
             {u"COMx\0"sv, 0U},
             {u"COM0\0"sv, 0U},
             {u"COM\0"sv, 0U},
             {u"\0"sv, 0U},
             {u""sv, 0U},
             {u"COM3"sv, 0U},            // not terminated
             {u"COM4294967299\0"sv, 3U}, // wraps at 32 bits
         }) {
        const auto data = std::as_bytes(std::span(stored));
        EXPECT_EQ(port_number(registry_string, data), number) << testing::PrintToString(stored);
        EXPECT_EQ(port_number(registry_expandable_string, data), number) << testing::PrintToString(stored);
        EXPECT_EQ(port_number(registry_binary, data), 0U);
    }
    const auto odd = std::as_bytes(std::span(u"COM3\0\0"sv)).first(11);
    EXPECT_EQ(port_number(registry_string, odd), 0U);
}

} // namespace
