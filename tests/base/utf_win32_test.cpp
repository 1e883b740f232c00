#include "base/utf.h"
#include "base/wide.h"

#include <gtest/gtest.h>

#include <random>

namespace {

std::u16string system_utf16(const std::string& utf8)
{
    std::u16string text(utf8.size() + 1, u'\0');
    const int length = ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()),
                                             girder::as_wide(text.data()), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

// The system is the oracle on well-formed text; on ill-formed text its older versions mark other parts.
TEST(utf_win32_test, agrees_with_the_systems_conversion)
{
    std::mt19937 random(20250625);
    std::uniform_int_distribution<char32_t> character(1, 0x10FFFF);
    for (int round = 0; round < 2000; ++round) {
        std::u16string text;
        while (text.size() < 20) {
            const char32_t value = character(random) >> (random() % 16);
            if (value == 0 || (value >= 0xD800 && value < 0xE000))
                continue;
            if (value >= 0x10000) {
                text += static_cast<char16_t>(0xD7C0 + (value >> 10));
                text += static_cast<char16_t>(0xDC00 + (value & 0x3FF));
            } else {
                text += static_cast<char16_t>(value);
            }
        }
        ASSERT_EQ(system_utf16(girder::to_utf8(text)), text);
    }
}

} // namespace
