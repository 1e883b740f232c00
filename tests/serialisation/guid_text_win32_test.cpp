#include "base/wide.h"
#include "serialisation/guid_text.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <objbase.h>

#include <bit>
#include <random>

namespace {

using girder::nsm::parse_guid;
using girder::nsm::to_text;

TEST(guid_text_test, agrees_with_the_system)
{
    std::mt19937_64 random(35);
    for (int i = 0; i < 500; ++i) {
        const auto id = std::bit_cast<girder::nsm::guid>(std::array{random(), random()});
        wchar_t expected[39];
        ::StringFromGUID2(std::bit_cast<GUID>(id), expected, 39);
        const std::u16string text = to_text(id);
        ASSERT_EQ(text, girder::as_utf16(expected));
        ASSERT_EQ(parse_guid(text), id);
    }
}

TEST(guid_text_test, refuses_what_the_system_refuses)
{
    for (const std::u16string text :
         {u"", u"{}", u"35B11BAB-5238-4E93-B06A-92332C5D20FA", u"{35B11BAB-5238-4E93-B06A-92332C5D20F}",
          u"{35B11BAB-5238-4E93-B06A-92332C5D20FA", u"{35B11BAB-5238-4E93-B06A-92332C5D20FG}",
          u"{35B11BAB+5238-4E93-B06A-92332C5D20FA}"}) {
        EXPECT_FALSE(parse_guid(text)) << testing::PrintToString(text);
    }
    CLSID parsed;
    const std::u16string lower = u"{35b11bab-5238-4e93-b06a-92332c5d20fa}";
    ASSERT_EQ(::CLSIDFromString(girder::as_wide(lower), &parsed), S_OK);
    EXPECT_EQ(parse_guid(lower), std::bit_cast<girder::nsm::guid>(parsed));
}

} // namespace
