#include "ports/port_number.h"
#include "support/cases.h"

#include <array>
#include <string_view>

namespace {

using namespace std::literals;

constexpr std::uint32_t registry_string = 1;
constexpr std::uint32_t registry_expandable_string = 2;
constexpr std::uint32_t registry_binary = 3;

struct port_number_case {
    const char* name;
    std::u16string_view stored;
    std::uint32_t number;
};

class port_number_test : public testing::TestWithParam<port_number_case> {};

TEST_P(port_number_test, follows_the_rule)
{
    const auto data = std::as_bytes(std::span(GetParam().stored));
    EXPECT_EQ(tidelink::port_number(registry_string, data), GetParam().number);
    EXPECT_EQ(tidelink::port_number(registry_expandable_string, data), GetParam().number);
    EXPECT_EQ(tidelink::port_number(registry_binary, data), 0U);
}

INSTANTIATE_TEST_SUITE_P(stored, port_number_test,
                         testing::ValuesIn(std::to_array<port_number_case>({
                             {"usual", u"COM12\0"sv, 12},
                             {"above_255", u"COM256\0"sv, 256},
                             {"any_three_characters_are_skipped", u"LPT1\0"sv, 1},
                             {"the_three_may_be_digits", u"1237\0"sv, 7},
                             {"stops_at_the_first_other_character", u"COM7x8\0"sv, 7},
                             {"stops_at_an_inner_null", u"COM7\0\u0038\0"sv, 7},
                             {"both_bytes_of_a_character_count", u"COM3\u0133\0"sv, 3},
                             {"no_digit", u"COMx\0"sv, 0},
                             {"zero", u"COM0\0"sv, 0},
                             {"only_three_characters", u"COM\0"sv, 0},
                             {"null_alone", u"\0"sv, 0},
                             {"empty", u""sv, 0},
                             {"not_terminated", u"COM3"sv, 0},
                             {"wraps_at_32_bits", u"COM4294967299\0"sv, 3},
                         })),
                         support::name_of_row);

TEST(port_number_size_test, an_odd_size_is_rejected)
{
    constexpr std::u16string_view stored = u"COM3\0\0"sv;
    const auto data = std::as_bytes(std::span(stored));
    EXPECT_EQ(tidelink::port_number(registry_string, data.first(data.size() - 1)), 0U);
}

} // namespace
