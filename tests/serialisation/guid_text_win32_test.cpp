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

} // namespace
