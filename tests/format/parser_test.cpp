#include "format/compile.h"
#include "format/error.h"
#include "format/literals.h"

#include <gmock/gmock.h>

namespace {

using namespace fmtkit;

TEST(parser_test, malformed_formats_are_refused)
{
    for (const std::u16string_view text : {u"{0q}", u"{-1}", u"abc{", u"{0", u"{0w", u"{0f", u"{0f}", u"{0a", u"{0?}",
                                           u"{0?=}", u"{0t%x}", u"{0t(%x", u"{0t(%x})}"})
        EXPECT_THROW(compile(text), bad_extended_format_string) << testing::PrintToString(text);
    for (const std::string_view text : {"{0w5fä}", "{0w5f\xC3}"}) // a narrow fill of several bytes
        EXPECT_THROW(compile(text), bad_extended_format_string) << text;
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

} // namespace
