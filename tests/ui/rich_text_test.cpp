#include "ui/rich_text.h"

#include <gtest/gtest.h>

namespace girder::ui {
namespace {

/// The runs in a form to read: each text behind its looks, in braces.
std::u16string described(const rich_text& text)
{
    std::u16string all;
    for (const text_run& run : text.runs) {
        all += u'{';
        if (run.style.bold)
            all += u"b ";
        if (run.style.percent != 100)
            all += run.style.percent == 120 ? u"120 " : u"? ";
        if (run.style.link >= 0)
            all += u"<" + text.addresses.at(static_cast<std::size_t>(run.style.link)) + u"> ";
        all += std::u16string_view(text.text).substr(run.begin, run.length);
        all += u'}';
    }
    return all;
}

TEST(parse_markup_test, reads)
{
    const struct {
        const char* name;
        std::u16string_view markup;
        std::u16string_view expected;
    } cases[] = {
        {"plain", u"a [b] [[c]]", u"{a [b] [[c]]}"},
        {"nested_in_part", u"a[[[bb[[[s:120:c]]]d]]]e", u"{a}{b b}{b 120 c}{b d}{e}"},
        {"innermost_size_counts", u"[[[s:50:a[[[s:120:b]]]]]]", u"{? a}{120 b}"},
        {"link", u"[[[hhttps://a.example]]].", u"{<https://a.example> https://a.example}{.}"},
        {"link_with_text", u"[[[hmailto:a@b|Write [[[bus]]]]]]!", u"{<mailto:a@b> Write }{b <mailto:a@b> us}{!}"},
        {"no_link_in_a_link", u"[[[hhttps://a|x[[[hhttps://b]]]y]]]", u"{<https://a> xhttps://by}"},
        {"other_schemes_are_text", u"[[[hfile://a]]][[[hhttp://a]]]", u"{[[[hfile://a]]][[[hhttp://a]]]}"},
        {"scheme_alone_is_text", u"[[[hhttps://]]]", u"{[[[hhttps://]]]}"},
        {"address_with_quotes_is_text", u"[[[hhttps://a\"b|x]]]", u"{[[[hhttps://a\"b|x]]]}"},
        {"address_with_reversed_writing_is_text", u"[[[hhttps://a\u202Eb]]]", u"{[[[hhttps://a\u202Eb]]]}"},
        {"unclosed_is_text", u"a[[[bb", u"{a[[[bb}"},
        {"outer_unclosed", u"[[[b[[[s:120:a]]]", u"{[[[b}{120 a}"},
        {"brackets", u"[[[([[[)b[[[b[[[[(]]]", u"{[]b}{b [[}"},
        {"size_out_of_range", u"[[[s:24:a]]][[[s:401:b]]]", u"{[[[s:24:a]]][[[s:401:b]]]}"},
        {"size_malformed", u"[[[s:12][[[s::a[[[s:00120:b[[[s:99999999999:",
         u"{[[[s:12][[[s::a[[[s:00120:b[[[s:99999999999:}"},
        {"line_ends", u"a\r\nb\n", u"{a\nb\n}"},
    };
    for (const auto& [name, markup, expected] : cases)
        EXPECT_EQ(described(parse_markup(markup)), expected) << name;
}

TEST(link_markup_test, shows_any_text_and_lets_no_address_become_text)
{
    EXPECT_EQ(described(parse_markup(u"x" + link_markup(u"https://a", u"]]] [[[bb|c") + u"y")),
              u"{x}{<https://a> ]]] [[[bb|c}{y}");
    for (const std::u16string_view address : {u"http://a", u"https://a|[[[bb", u"https://a]]]b", u"https://[1]"})
        EXPECT_EQ(link_markup(address, u"text"), u"");
}

} // namespace
} // namespace girder::ui
