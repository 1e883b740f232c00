#include "format/compile.h"
#include "format/error.h"
#include "format/format.h"
#include "format/literals.h"
#include "support/cases.h"

#include <limits>
#include <vector>

namespace {

using namespace fmtkit::literals;
using fmtkit::argument;
using fmtkit::compile;

struct render_case {
    const char* name;
    std::string_view format;
    std::vector<argument> arguments;
    std::string_view text;
};

class render_test : public testing::TestWithParam<render_case> {};

std::u16string ascii(std::string_view text)
{
    std::u16string wide;
    for (const char unit : text)
        wide += static_cast<char16_t>(static_cast<unsigned char>(unit));
    return wide;
}

TEST_P(render_test, writes_the_same_in_both_character_types)
{
    std::string narrow = "before ";
    fmtkit::render(narrow, compile(GetParam().format), GetParam().arguments);
    EXPECT_EQ(narrow, "before " + std::string(GetParam().text));
    std::u16string wide;
    const std::u16string wide_format = ascii(GetParam().format);
    fmtkit::render(wide, compile(wide_format), GetParam().arguments);
    EXPECT_EQ(wide, ascii(GetParam().text));
}

constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();

INSTANTIATE_TEST_SUITE_P(texts, render_test,
                         testing::ValuesIn(std::vector<render_case>{
                             {"plain", "a } b", {}, "a } b"},
                             {"escaped_brace_hides_the_specifier", "{{0}", {1}, "{0}"},
                             {"escaped_braces_amid_text", "a{{b{{c{0}{{", {1}, "a{b{c1{"},
                             {"automatic_numbers_follow_given_ones", "{}{}{5}{}", {0, 1, 2, 3, 4, 5, 6}, "0156"},
                             {"key_path", "Tidelink Server {}.{w2arf0}", {7U, 1U}, "Tidelink Server 7.01"},
                             {"version", "{0}.{1w2arf0}.{2w2arf0}.{3w4arf0}", {7, 1, 0, 1604}, "7.01.00.1604"},
                             {"missing_argument_is_nothing", "<{0w5}{1}>", {}, "<>"},
                             {"mixed_texts", "{}{}", {u"wide", "narrow"}, "widenarrow"},
                         }),
                         support::name_of_row);

INSTANTIATE_TEST_SUITE_P(widths, render_test,
                         testing::ValuesIn(std::vector<render_case>{
                             {"left", "{0w6}|", {"ab"}, "ab    |"},
                             {"right_with_fill", "{0w5f*ar}", {"ab"}, "***ab"},
                             {"centre", "{0w6ac}", {"ab"}, "  ab  "},
                             {"centre_odd_padding_goes_right", "{0w6ac}", {"abc"}, " abc  "},
                             {"fill_may_be_a_brace", "{0f}w3}", {"a"}, "a}}"},
                             {"fill_may_be_a_digit", "{0w3f7}", {"a"}, "a77"},
                             {"zeros_on_every_side", "{0w3f0} {0w3f0ac} {0w3f0ar}", {5}, "500 050 005"},
                             {"an_empty_text_is_padded", "{0w2f.}", {""}, ".."},
                             {"cut_left", "{0w,3}", {"abcdef"}, "abc"},
                             {"cut_right", "{0w,3ar}", {"abcdef"}, "def"},
                             {"exact_width_is_not_cut", "{0w,3e}", {"abc"}, "abc"},
                             {"padding_goes_outside_the_sign", "{0arf0w5}", {-12}, "00-12"},
                             {"padding_goes_outside_the_prefix", "{0b016w6f.ar}", {255}, "..0xFF"},
                             {"other_alignments_are_ignored", "{0azw3}|", {"a"}, "a  |"},
                             {"maximum_alone_keeps_the_minimum", "{0w5w,3}|", {"a"}, "a    |"},
                             {"minimum_above_maximum_pads", "{0w8,3}|", {"abcdefg"}, "abcdefg |"},
                             {"minimum_above_maximum_cuts", "{0w8,3}", {"abcdefghij"}, "abc"},
                             {"minimum_above_maximum_cuts_right", "{0w8,3ar}", {"abcdefghij"}, "hij"},
                             {"later_values_win", "{0w5w2}|", {"a"}, "a |"},
                             {"numbers_wrap_in_their_field", "{0w65538}|", {"a"}, "a |"},
                             {"recorded_only", "{0np3ssa}", {"a"}, "a"},
                         }),
                         support::name_of_row);

INSTANTIATE_TEST_SUITE_P(
    numbers, render_test,
    testing::ValuesIn(std::vector<render_case>{
        {"lowest", "{}", {lowest}, "-9223372036854775808"},
        {"highest", "{}", {std::numeric_limits<std::uint64_t>::max()}, "18446744073709551615"},
        {"plus", "{0+}{1+}{2+}", {5, -5, 0}, "+5-5+0"},
        {"plus_is_for_signed_values", "{0+}{1u+}", {5U, 5}, "55"},
        {"unsigned_in_32_bits", "{0u}", {-1}, "4294967295"},
        {"unsigned_in_64_bits", "{0u}", {std::int64_t{-1}}, "18446744073709551615"},
        {"binary", "{0b2} {1b2}", {10, -2}, "1010 -10"},
        {"octal", "{0b8}", {64}, "100"},
        {"hexadecimal", "{0b16}{0b16x}{0b16X}", {255}, "FFffFF"},
        {"lower_case_wins", "{0b16xb16}", {255}, "ff"},
        {"any_other_base_is_hexadecimal", "{0b7}{0b}{0b36}", {255}, "FFFFFF"},
        {"padded_to_8", "{0b016xp}", {255}, "0x000000ff"},
        {"padded_to_16", "{0b16p}", {std::int64_t{0x123456789}}, "0000000123456789"},
        {"zero", "{0}{0b16}{0b016p}", {0}, "000x00000000"},
        {"negative_with_prefix", "{0b016}", {-255}, "-0xFF"},
        {"negative_unsigned_hexadecimal", "{0ub016xp}", {static_cast<std::int32_t>(0x80070005)}, "0x80070005"},
        {"character", "{0c}{1cw3}|", {65, 66}, "AB  |"},
        {"a_condition_outside_one_writes_nothing", "<{0w3}>", {true}, "<>"},
        {"a_time_without_a_pattern_writes_nothing", "<{0w3}>", {girder::file_time{}}, "<>"},
    }),
    support::name_of_row);

constexpr std::string_view nested = "{1?<}A{2?<}B{2?|}C{2?>}D{1?>}";

INSTANTIATE_TEST_SUITE_P(conditions, render_test,
                         testing::ValuesIn(std::vector<render_case>{
                             {"both_true", nested, {0, true, true}, "ABD"},
                             {"inner_false", nested, {0, true, false}, "ACD"},
                             {"outer_false", nested, {0, false, true}, ""},
                             {"suffix", "{0arf0w5}{2?<}@{1}{2?>}", {7U, 3U, true}, "00007@3"},
                             {"no_suffix", "{0arf0w5}{2?<}@{1}{2?>}", {7U, 3U, false}, "00007"},
                             {"else_negates_the_innermost", "{0?<}a{0?<}b{1?|}c{0?>}d{0?>}", {true, false}, "abd"},
                             {"missing_argument_is_skipped", "{5?<}a{5?>}b", {true}, "ab"},
                             {"end_and_else_without_begin_are_ignored", "{0?>}a{0?|}b", {true}, "ab"},
                             {"never_closed", "a{0?<}b", {false}, "a"},
                             {"a_text_counts_as_true", "{0?<}a{0?|}b{0?>}", {""}, "a"},
                         }),
                         support::name_of_row);

TEST(format_test, cutting_with_a_mark)
{
    EXPECT_EQ(fmtkit::format(u"{0w,3e}"_fmt, u"abcdef"), u"ab…");
    EXPECT_EQ(fmtkit::format(u"{0w,3ear}"_fmt, u"abcdef"), u"…ef");
    EXPECT_EQ(fmtkit::format(u"{0w8,3ear}"_fmt, u"abcdefghij"), u"…ij");
    EXPECT_EQ(fmtkit::format(u"{0w,1e}"_fmt, u"abcdef"), u"…");
    EXPECT_EQ(fmtkit::format("{0w,3e}"_fmt, u"abcdef"), "ab…");
}

TEST(format_test, cutting_leaves_characters_whole)
{
    EXPECT_EQ(fmtkit::format("{0w,1}|{0w,2}|{0w,3}|{0w,4e}"_fmt, "äöü"), "|ä|ä|ä…");
    EXPECT_EQ(fmtkit::format("{0w,1ar}|{0w,2ar}|{0w,3ar}|{0w,4ear}"_fmt, "äöü"), "|ü|ü|…ü");
    EXPECT_EQ(fmtkit::format(u"{0w,2}|{0w,2ar}|{0w,3e}"_fmt, u"a😀b"), u"a|b|a…");
}

TEST(format_test, texts_are_converted_to_the_formats_encoding)
{
    EXPECT_EQ(fmtkit::format(u"{}{}"_fmt, "Grüße ", std::u16string(u"日本")), u"Grüße 日本");
    EXPECT_EQ(fmtkit::format("{}{}"_fmt, "Grüße ", u"日本"), "Grüße 日本");
}

TEST(format_test, conditions_nest_without_a_limit)
{
    std::u16string deep;
    for (int i = 0; i < 1000; ++i)
        deep += u"{0?<}";
    deep += u"x";
    for (int i = 0; i < 1000; ++i)
        deep += u"{0?>}";
    EXPECT_EQ(fmtkit::format(compile(deep + u"y{1?<}z"), true, false), u"xy");
}

} // namespace
