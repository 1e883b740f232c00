#include "format/compile.h"
#include "format/error.h"
#include "format/literals.h"
#include "support/cases.h"

#include <gmock/gmock.h>

namespace {

using namespace fmtkit;

struct malformed_case {
    const char* name;
    std::u16string_view text;
};

class malformed_test : public testing::TestWithParam<malformed_case> {};

TEST_P(malformed_test, is_refused)
{
    EXPECT_THROW(compile(GetParam().text), bad_extended_format_string);
}

INSTANTIATE_TEST_SUITE_P(format, malformed_test,
                         testing::ValuesIn(std::to_array<malformed_case>({
                             {"unknown_letter", u"{0q}"},
                             {"sign", u"{-1}"},
                             {"brace_at_the_end", u"abc{"},
                             {"ends_after_number", u"{0"},
                             {"ends_after_letter", u"{0w"},
                             {"ends_after_fill", u"{0f"},
                             {"fill_takes_the_brace", u"{0f}"},
                             {"ends_after_alignment", u"{0a"},
                             {"condition_without_kind", u"{0?}"},
                             {"condition_of_another_kind", u"{0?=}"},
                             {"time_without_parenthesis", u"{0t%x}"},
                             {"time_not_closed", u"{0t(%x"},
                             {"brace_in_time", u"{0t(%x})}"},
                         })),
                         support::name_of_row);

TEST(parser_test, a_narrow_fill_of_several_bytes_is_refused)
{
    EXPECT_THROW(compile("{0w5fä}"), bad_extended_format_string);
    EXPECT_THROW(compile("{0w5f\xC3}"), bad_extended_format_string);
}

/// The same text compiled in both ways.
template <details::fixed_text Text>
void expect_identical()
{
    constexpr literal_format<Text> literal;
    const auto compiled = compile(literal.text());
    EXPECT_THAT(compiled.items(), testing::ElementsAreArray(literal.items().begin(), literal.items().end()))
        << testing::PrintToString(literal.text());
}

TEST(parser_test, both_compilations_are_identical)
{
    expect_identical<u"">();
    expect_identical<u"{{0}{0}{{a">();
    expect_identical<u"Error {0} ({1ub016xp})">();
    expect_identical<u"{0arf0w5}{2?<}@{1}{2?>}">();
    expect_identical<"{t(%FT%T%z)}">();
    expect_identical<"{7+acb08cef*lnp3ssaw70000,9?|b16Xp}">();
}

TEST(parser_test, items_record_what_the_letters_say)
{
    const std::u16string_view text = u"a{{{3w5,9arf0eb016xp?<}{t(%x)}";
    const CompiledFormat compiled = compile(text);
    ASSERT_EQ(compiled.items().size(), 3U);
    EXPECT_EQ(compiled.items()[0], (FormatItem{.begin = 0, .end = 3, .flags = flag_literal | flag_escaped}));
    EXPECT_EQ(compiled.items()[1], (FormatItem{.flags = 0x1 | 0x40 | 0x4 | 0x1000 | 0x100 | 0x800,
                                               .argIndex = 3,
                                               .align = 2,
                                               .minWidth = 5,
                                               .maxWidth = 9,
                                               .fill = u'0',
                                               .base = 16}));
    EXPECT_EQ(compiled.items()[2], (FormatItem{.begin = 26, .end = 28, .flags = 0x20, .argIndex = 4}));
}

} // namespace
