#include "localisation/string_layer.h"
#include "pack_builder.h"

#include <gtest/gtest.h>

#include <cstring>

namespace tidelink {
namespace {

using support::pack_builder;
using support::pack_bytes;

std::optional<StringLayer> read(const pack_bytes& pack, const StringLayer* beneath = nullptr)
{
    return StringLayer::read(pack, pack_form::bare, beneath);
}

TEST(string_layer_test, serves_texts_and_items_by_index_from_the_memory_of_the_pack)
{
    constexpr std::uint32_t largest = 65'535;
    const pack_bytes pack = pack_builder()
                                .text(7, 0x3FFFFFFF, u"Seven")
                                .text(0, 1, u"")
                                .list(1, 5, {{4, u"four"}, {0, u"older"}, {0, u"zero"}})
                                .list(2, 0, {{largest, u"largest"}}, 3)
                                .with_signature();
    const auto layer = StringLayer::read(pack, pack_form::with_signature, nullptr);
    ASSERT_TRUE(layer);
    EXPECT_EQ(layer->locale_name(), "ENU");
    EXPECT_EQ(layer->language_tag(), "en");
    const StringEntry& seven = *layer->find(7);
    EXPECT_EQ(seven.id(), 7U);
    EXPECT_EQ(seven.revision(), 0x3FFFFFFFU);
    const auto* const first = reinterpret_cast<const std::byte*>(seven.text().data());
    EXPECT_TRUE(first > pack.data() && first < pack.data() + pack.size());
    EXPECT_EQ(seven.text(), u"Seven");
    EXPECT_EQ(seven.text().data()[5], u'\0');
    EXPECT_EQ(seven.item(0), u"");
    EXPECT_EQ(layer->find(0)->text(), u"");
    EXPECT_EQ(layer->find(8), nullptr);
    const StringEntry& sparse = *layer->find(1);
    EXPECT_EQ(sparse.revision(), 5U);
    EXPECT_EQ(sparse.text(), u"");
    for (const auto& [index, item] : {std::pair(0U, u"zero"), {2, u""}, {4, u"four"}, {5, u""}})
        EXPECT_EQ(sparse.item(index), item);
    EXPECT_EQ(layer->find(2)->item(largest), u"largest");
}

// Multiples of the inverse of the hash's factor share one home: a search must end, and the first entry still counts.
TEST(string_layer_test, finds_ids_that_collide_beneath_a_small_layer_and_a_large_one)
{
    constexpr std::uint32_t inverse_of_factor = 0x0E8B2F51;
    static_assert(inverse_of_factor * 0x9E3779B1U == 1);
    const auto id_of = [](std::uint32_t number) { return number % 2 == 0 ? number * inverse_of_factor : number; };
    constexpr std::uint32_t count = 1000;
    const auto pack_of = [&](std::uint32_t first, std::uint32_t end) {
        pack_builder builder;
        for (const auto* const text : {u"first", u"later"})
            for (std::uint32_t number = first; number < end; ++number)
                builder.text(id_of(number), 0, text);
        return builder.bare();
    };
    const pack_bytes lower = pack_of(0, count);
    const auto lower_layer = read(lower);
    for (const auto& [first, end] : {std::pair(count, count + 1), {count / 2, 4 * count}}) {
        const pack_bytes upper = pack_of(first, end);
        const auto layer = read(upper, &*lower_layer);
        for (std::uint32_t number = 0; number < end; ++number) {
            const StringEntry* const entry = layer->find(id_of(number));
            ASSERT_TRUE(entry) << number;
            EXPECT_EQ(entry->id(), id_of(number));
            EXPECT_EQ(entry->text(), u"first");
            const auto* const served = reinterpret_cast<const std::byte*>(entry->text().data());
            EXPECT_EQ(served >= upper.data() && served < upper.data() + upper.size(), number >= first);
        }
        EXPECT_EQ(layer->find(id_of(end)), nullptr);
        EXPECT_EQ(layer->find(id_of(end + 1)), nullptr);
    }
}

pack_bytes sample()
{
    return pack_builder()
        .text(1, 0, u"one")
        .list(2, 0, {{0, u"zero"}, {5, u"five"}})
        .text(3, 0, u"three")
        .with_signature();
}

// The copies are as long as the cut pack, so that a sanitizer sees every access behind the end.
TEST(string_layer_test, refuses_a_pack_cut_anywhere)
{
    const pack_bytes whole = sample();
    ASSERT_TRUE(StringLayer::read(whole, pack_form::with_signature, nullptr));
    EXPECT_TRUE(read(pack_builder().bare())) << "without any entry";
    for (auto end = whole.begin(); end != whole.end(); ++end)
        EXPECT_FALSE(StringLayer::read(pack_bytes(whole.begin(), end), pack_form::with_signature, nullptr))
            << end - whole.begin();
}

TEST(string_layer_test, refuses_a_damaged_pack)
{
    constexpr struct {
        std::size_t at;
        int value;
    } cases[] = {
        {15, 0},    // end of the signature
        {17, 0xFF}, // length of the locale's name
        {26, 1},    // null behind the language tag
        {27, 0xFF}, // length of what is extra
        {33, 0xFF}, // count of entries
        {43, 0xFF}, // length of the first text
        {63, 0xFF}, // count of items
        {66, 1},    // index of an item beyond 65,535
        {67, 0xFF}, // the same near 2^32
        {69, 0xFF}, // length of an item
    };
    for (const auto& [at, value] : cases) {
        pack_bytes pack = sample();
        pack.at(at) = static_cast<std::byte>(value);
        EXPECT_FALSE(StringLayer::read(pack, pack_form::with_signature, nullptr)) << at;
    }
}

TEST(string_layer_test, refuses_a_list_that_would_take_long_to_search)
{
    for (const std::uint32_t items : {1'024U, 1'025U}) {
        pack_bytes pack = pack_builder().list(1, 0, {}).bare();
        std::memcpy(&pack[pack.size() - sizeof items], &items, sizeof items);
        pack.resize(pack.size() + items * std::size_t{8}); // empty items with the index 0
        EXPECT_EQ(read(pack).has_value(), items == 1'024) << items;
    }
}

} // namespace
} // namespace tidelink
