#include "format/compile.h"
#include "format/error.h"
#include "format/format.h"
#include "format/literals.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

using namespace fmtkit::literals;
using fmtkit::argument;
using fmtkit::compile;

struct render_case {
    std::string_view format;
    std::vector<argument> arguments;
    std::string_view text;
};

constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
constexpr std::string_view nested = "{1?<}A{2?<}B{2?|}C{2?>}D{1?>}";

const render_case render_cases[] = {
    // Texts
    {"a } b", {}, "a } b"},
    {"{{0}", {1}, "{0}"},
    {"a{{b{{c{0}{{", {1}, "a{b{c1{"},
    {"{}{}{5}{}", {0, 1, 2, 3, 4, 5, 6}, "0156"},
    {"{0}.{1w2arf0}.{2w2arf0}.{3w4arf0}", {7, 1, 0, 1604}, "7.01.00.1604"},
    {"<{0w5}{1}>", {}, "<>"},
    // Widths
    {"{0w6}|", {"ab"}, "ab    |"},
    {"{0w5f*ar}", {"ab"}, "***ab"},
    {"{0w6ac}", {"ab"}, "  ab  "},
    {"{0w6ac}", {"abc"}, " abc  "},
    {"{0f}w3}", {"a"}, "a}}"},
    {"{0w3f0} {0w3f0ac} {0w3f0ar}", {5}, "500 050 005"},
    {"{0w2f.}", {""}, ".."},
    {"{0w,3}", {"abcdef"}, "abc"},
    {"{0w,3ar}", {"abcdef"}, "def"},
    {"{0w,3e}", {"abc"}, "abc"},
    {"{0arf0w5}", {-12}, "00-12"},
    {"{0b016w6f.ar}", {255}, "..0xFF"},
    {"{0azw3}|", {"a"}, "a  |"}, // another alignment
    {"{0w5w,3}|", {"a"}, "a    |"},
    {"{0w8,3}|", {"abcdefg"}, "abcdefg |"},
    {"{0w8,3}", {"abcdefghij"}, "abc"},
    {"{0w8,3ar}", {"abcdefghij"}, "hij"},
    {"{0w5w2}|", {"a"}, "a |"},
    {"{0w65538}|", {"a"}, "a |"}, // wraps in its 16 bits
    {"{0np3ssa}", {"a"}, "a"},    // letters that are recorded only
    // Numbers
    {"{}", {lowest}, "-9223372036854775808"},
    {"{}", {std::numeric_limits<std::uint64_t>::max()}, "18446744073709551615"},
    {"{0+}{1+}{2+}", {5, -5, 0}, "+5-5+0"},
    {"{0+}{1u+}", {5U, 5}, "55"},
    {"{0u}", {-1}, "4294967295"},
    {"{0u}", {std::int64_t{-1}}, "18446744073709551615"},
    {"{0b2} {1b2}", {10, -2}, "1010 -10"},
    {"{0b8}", {64}, "100"},
    {"{0b16}{0b16x}{0b16X}", {255}, "FFffFF"},
    {"{0b16xb16}", {255}, "ff"},
    {"{0b7}{0b}{0b36}", {255}, "FFFFFF"},
    {"{0b016xp}", {255}, "0x000000ff"},
    {"{0b16p}", {std::int64_t{0x123456789}}, "0000000123456789"},
    {"{0}{0b16}{0b016p}", {0}, "000x00000000"},
    {"{0b016}", {-255}, "-0xFF"},
    {"{0ub016xp}", {static_cast<std::int32_t>(0x80070005)}, "0x80070005"},
    {"{0c}{1cw3}|", {65, 66}, "AB  |"},
    {"<{0w3}>", {true}, "<>"},
    {"<{0w3}>", {girder::file_time{}}, "<>"},
    // Conditions
    {nested, {0, true, true}, "ABD"},
    {nested, {0, true, false}, "ACD"},
    {nested, {0, false, true}, ""},
    {"{0arf0w5}{2?<}@{1}{2?>}", {7U, 3U, true}, "00007@3"},
    {"{0arf0w5}{2?<}@{1}{2?>}", {7U, 3U, false}, "00007"},
    {"{0?<}a{0?<}b{1?|}c{0?>}d{0?>}", {true, false}, "abd"},
    {"{5?<}a{5?>}b", {true}, "ab"},
    {"{0?>}a{0?|}b", {true}, "ab"},
    {"a{0?<}b", {false}, "a"},
    {"{0?<}a{0?|}b{0?>}", {""}, "a"},
};

std::u16string ascii(std::string_view text)
{
    return {text.begin(), text.end()};
}

TEST(format_test, writes_the_same_in_both_character_types)
{
    for (const auto& [format, arguments, text] : render_cases) {
        SCOPED_TRACE(format);
        std::string narrow = "before ";
        fmtkit::render(narrow, compile(format), arguments);
        EXPECT_EQ(narrow, "before " + std::string(text));
        std::u16string wide;
        const std::u16string wide_format = ascii(format);
        fmtkit::render(wide, compile(wide_format), arguments);
        EXPECT_EQ(wide, ascii(text));
    }
}

TEST(format_test, malformed_formats_are_refused)
{
    for (const std::u16string_view text : {u"{0q}", u"{-1}", u"abc{", u"{0", u"{0w", u"{0f", u"{0f}", u"{0a", u"{0?}",
                                           u"{0?=}", u"{0t%x}", u"{0t(%x", u"{0t(%x})}"})
        EXPECT_THROW(compile(text), fmtkit::bad_extended_format_string) << testing::PrintToString(text);
    for (const std::string_view text : {"{0w5fä}", "{0w5f\xC3}"}) // a narrow fill of several bytes
        EXPECT_THROW(compile(text), fmtkit::bad_extended_format_string) << text;
}

TEST(format_test, cutting_marks_and_leaves_characters_whole)
{
    EXPECT_EQ(fmtkit::format(u"{0w,3e}"_fmt, u"abcdef"), u"ab…");
    EXPECT_EQ(fmtkit::format(u"{0w,3ear}"_fmt, u"abcdef"), u"…ef");
    EXPECT_EQ(fmtkit::format(u"{0w8,3ear}"_fmt, u"abcdefghij"), u"…ij");
    EXPECT_EQ(fmtkit::format(u"{0w,1e}"_fmt, u"abcdef"), u"…");
    EXPECT_EQ(fmtkit::format("{0w,3e}"_fmt, u"abcdef"), "ab…");
    EXPECT_EQ(fmtkit::format("{0w,1}|{0w,2}|{0w,3}|{0w,4e}"_fmt, "äöü"), "|ä|ä|ä…");
    EXPECT_EQ(fmtkit::format("{0w,1ar}|{0w,2ar}|{0w,3ar}|{0w,4ear}"_fmt, "äöü"), "|ü|ü|…ü");
    EXPECT_EQ(fmtkit::format(u"{0w,2}|{0w,2ar}|{0w,3e}"_fmt, u"a😀b"), u"a|b|a…");
}

TEST(format_test, texts_are_converted_to_the_formats_encoding)
{
    EXPECT_EQ(fmtkit::format(u"{}{}"_fmt, "Grüße ", std::u16string(u"日本")), u"Grüße 日本");
    EXPECT_EQ(fmtkit::format("{}{}"_fmt, "Grüße ", u"日本"), "Grüße 日本");
}

} // namespace
