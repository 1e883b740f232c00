#include "base/utf.h"

#include <gtest/gtest.h>

namespace {

using girder::to_utf16;
using girder::to_utf8;

TEST(utf_test, ill_formed_text_becomes_replacement_characters_among_the_others)
{
    using namespace std::literals;
    for (const auto& [utf8, utf16] : {
             std::pair("a\xC3\xBC\xE6\x97\xA5\xF0\x9F\x98\x80"sv, u"a\u00FC\u65E5\U0001F600"sv), // nothing wrong
             {"a\x80z"sv, u"a\xFFFDz"sv},
             {"\xC0\xAF"sv, u"\xFFFD\xFFFD"sv}, // an overlong slash
             {"\xE0\x80\xAF"sv, u"\xFFFD\xFFFD\xFFFD"sv},
             {"\xED\xA0\x80"sv, u"\xFFFD\xFFFD\xFFFD"sv}, // a surrogate
             {"\xE2\x82"sv, u"\xFFFD"sv},                 // cut off, which is one mark
             {"\xF0\x9F\x98z"sv, u"\xFFFDz"sv},
             {"\xF4\x90\x80\x80"sv, u"\xFFFD\xFFFD\xFFFD\xFFFD"sv}, // above the last character
             {"\xFE\xFF"sv, u"\xFFFD\xFFFD"sv},
         })
        EXPECT_EQ(to_utf16(utf8), utf16) << testing::PrintToString(utf8);
}

TEST(utf_test, every_character_survives_both_ways)
{
    for (char32_t value = 1; value < 0x110000; ++value) {
        if (value >= 0xD800 && value < 0xE000)
            continue;
        std::u16string text = {static_cast<char16_t>(value)};
        if (value >= 0x10000)
            text = {static_cast<char16_t>(0xD7C0 + (value >> 10)), static_cast<char16_t>(0xDC00 + (value & 0x3FF))};
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
