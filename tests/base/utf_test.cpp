#include "base/utf.h"
#include "support/cases.h"

namespace {

using girder::to_utf16;
using girder::to_utf8;

struct utf_case {
    const char* name;
    std::string_view utf8;
    std::u16string_view utf16;
};

class ill_formed_utf8_test : public testing::TestWithParam<utf_case> {};

TEST_P(ill_formed_utf8_test, becomes_replacement_characters)
{
    EXPECT_EQ(to_utf16(GetParam().utf8), GetParam().utf16);
}

INSTANTIATE_TEST_SUITE_P(rule, ill_formed_utf8_test,
                         testing::ValuesIn(std::to_array<utf_case>({
                             {"lone_continuation", "a\x80z", u"a\xFFFDz"},
                             {"overlong_slash", "\xC0\xAF", u"\xFFFD\xFFFD"},
                             {"overlong_three_bytes", "\xE0\x80\xAF", u"\xFFFD\xFFFD\xFFFD"},
                             {"surrogate", "\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD"},
                             {"truncated_three_bytes_is_one_mark", "\xE2\x82", u"\xFFFD"},
                             {"truncated_then_letter", "\xF0\x9F\x98z", u"\xFFFDz"},
                             {"above_the_last_character", "\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},
                             {"never_a_byte_of_utf8", "\xFE\xFF", u"\xFFFD\xFFFD"},
                         })),
                         support::name_of_row);

TEST(utf_test, every_character_survives_both_ways)
{
    for (char32_t value = 1; value < 0x110000; ++value) {
        if (value >= 0xD800 && value < 0xE000)
            continue;
        std::u16string text;
        if (value < 0x10000) {
            text = {static_cast<char16_t>(value)};
        } else {
            text = {static_cast<char16_t>(0xD7C0 + (value >> 10)), static_cast<char16_t>(0xDC00 + (value & 0x3FF))};
        }
        ASSERT_EQ(to_utf16(to_utf8(text)), text) << std::hex << static_cast<std::uint32_t>(value);
    }
}

TEST(utf_test, lone_surrogates_become_replacement_characters)
{
    const char16_t text[] = {u'a', 0xD800, u'b', 0xDC00, 0xD83D};
    EXPECT_EQ(to_utf8({text, 5}), "a\xEF\xBF\xBD"
                                  "b\xEF\xBF\xBD\xEF\xBF\xBD");
}

} // namespace
