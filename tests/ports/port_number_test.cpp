#include "ports/port_number.h"
#include "support/cases.h"

#include <string_view>

namespace {

using namespace std::string_view_literals;

struct number_case {
    const char* name;
    std::u16string_view stored; ///< with its terminating null where it has one
    std::uint32_t number;
};

class port_number_test : public testing::TestWithParam<number_case> {};

TEST_P(port_number_test, follows_the_rule)
{
    const auto data = std::as_bytes(std::span(GetParam().stored));
    EXPECT_EQ(tidelink::port_number(1, data), GetParam().number);
    EXPECT_EQ(tidelink::port_number(2, data), GetParam().number);
    EXPECT_EQ(tidelink::port_number(3, data), 0U) << "a binary value is no text";
}

INSTANTIATE_TEST_SUITE_P(stored, port_number_test,
                         testing::ValuesIn(std::to_array<number_case>({
                             {"usual", u"COM12\0"sv, 12},
                             {"above_255", u"COM256\0"sv, 256},
                             {"any_three_letters_are_skipped", u"LPT1\0"sv, 1},
                             {"stops_at_the_first_other_character", u"COM7x8\0"sv, 7},
                             {"no_digit", u"COMx\0"sv, 0},
                             {"only_three_characters", u"COM\0"sv, 0},
                             {"zero", u"COM0\0"sv, 0},
                             {"wraps_at_32_bits", u"COM4294967299\0"sv, 3},
                             {"not_terminated", u"COM3"sv, 0},
                             {"terminated_early",
                              u"COM1\0"
                              "2\0"sv,
                              1},
                             {"empty", u""sv, 0},
                         })),
                         support::name_of_row);

TEST(port_number_test, an_odd_size_is_rejected)
{
    constexpr std::u16string_view stored = u"COM3\0"sv;
    const auto data = std::as_bytes(std::span(stored));
    EXPECT_EQ(tidelink::port_number(1, data.first(data.size() - 1)), 0U);
}

} // namespace
