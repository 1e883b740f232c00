#include "localisation/string_layer.h"
#include "pack_builder.h"

#include <gtest/gtest.h>

namespace tidelink {
namespace {

using support::copy_of;
using support::pack_builder;
using support::pack_bytes;

std::u16string text_of(const StringLayer& layer, std::uint32_t id)
{
    const StringEntry* const entry = layer.find(id);
    return entry != nullptr ? copy_of(entry->text()) : u"(none)";
}

std::optional<StringLayer> read(const pack_bytes& pack, const StringLayer* beneath = nullptr)
{
    return StringLayer::read(pack, pack_form::bare, beneath);
}

TEST(string_layer_test, serves_texts_from_the_memory_of_the_pack)
{
    for (const std::string_view locale_name : {"ENU", "German_Germany"}) {
        const pack_bytes pack = pack_builder(locale_name, "en").text(7, 3, u"Seven").text(0, 1, u"").with_signature();
        const auto layer = StringLayer::read(pack, pack_form::with_signature, nullptr);
        ASSERT_TRUE(layer);
        EXPECT_EQ(layer->locale_name(), locale_name);
        EXPECT_EQ(layer->language_tag(), "en");

        const StringEntry* const seven = layer->find(7);
        ASSERT_TRUE(seven);
        EXPECT_EQ(seven->id(), 7U);
        EXPECT_EQ(seven->revision(), 3U);
        EXPECT_EQ(copy_of(seven->text()), u"Seven");
        const auto* const first = reinterpret_cast<const std::byte*>(seven->text().data());
        EXPECT_TRUE(first > pack.data() && first < pack.data() + pack.size());
        EXPECT_EQ(first[10], std::byte{0});
        EXPECT_EQ(copy_of(seven->item(0)), u"");

        EXPECT_EQ(text_of(*layer, 0), u"");
        EXPECT_EQ(layer->find(8), nullptr);
    }
}

TEST(string_layer_test, serves_items_by_index)
{
    constexpr std::uint32_t largest = 65'535;
    constexpr std::uint32_t largest_revision = 0x3FFFFFFF;
    const pack_bytes pack = pack_builder()
                                .list(1, 5, {{4, u"four"}, {0, u"zero"}, {1, u"one"}})
                                .list(2, 0, {})
                                .list(3, 0, {{0, u"older"}, {0, u"newer"}}, 2)
                                .list(4, largest_revision, {{largest, u"largest"}}, 3)
                                .bare();
    const auto layer = read(pack);
    ASSERT_TRUE(layer);
    const StringEntry& sparse = *layer->find(1);
    EXPECT_EQ(sparse.revision(), 5U);
    EXPECT_EQ(sparse.text(), u"");
    EXPECT_EQ(sparse.item(0), u"zero");
    EXPECT_EQ(sparse.item(1), u"one");
    EXPECT_EQ(sparse.item(2), u"");
    EXPECT_EQ(sparse.item(3), u"");
    EXPECT_EQ(sparse.item(4), u"four");
    EXPECT_EQ(sparse.item(5), u"");
    EXPECT_EQ(layer->find(2)->item(0), u"");
    EXPECT_EQ(layer->find(3)->item(0), u"newer");
    EXPECT_EQ(layer->find(4)->item(largest), u"largest");
    EXPECT_EQ(layer->find(4)->item(0), u"");
    EXPECT_EQ(layer->find(4)->revision(), largest_revision);
}

// Multiples of the inverse of the hash's factor share one home: a search must end, and the first entry still counts.
TEST(string_layer_test, finds_ids_that_collide_beneath_a_small_layer_and_a_large_one)
{
    constexpr std::uint32_t inverse_of_factor = 0x0E8B2F51;
    static_assert(inverse_of_factor * 0x9E3779B1U == 1);
    const auto id_of = [](std::uint32_t number) { return number % 2 == 0 ? number * inverse_of_factor : number; };
    constexpr std::uint32_t count = 1000;
    pack_builder builder;
    for (std::uint32_t number = 0; number < count; ++number)
        builder.text(id_of(number), 0, std::u16string(number, u'x'));
    for (std::uint32_t number = 0; number < count; ++number)
        builder.text(id_of(number), 0, u"later");
    const pack_bytes pack = builder.bare();
    const auto lower_layer = read(pack);
    for (const auto& [first, end] : {std::pair(count, count + 1), {count / 2, 4 * count}}) {
        pack_builder upper_builder;
        for (std::uint32_t number = first; number < end; ++number)
            upper_builder.text(id_of(number), 0, u"upper");
        const pack_bytes upper = upper_builder.bare();
        const auto layer = read(upper, &*lower_layer);
        for (std::uint32_t number = 0; number < end; ++number)
            ASSERT_EQ(text_of(*layer, id_of(number)), number < first ? std::u16string(number, u'x') : u"upper");
        EXPECT_EQ(layer->find(id_of(end)), nullptr);
        EXPECT_EQ(layer->find(id_of(end + 1)), nullptr);
    }
}

// As the modules of a language pack do in whichever order.
TEST(string_layer_test, lies_over_a_pack_before_or_behind_it_in_one_file)
{
    const pack_bytes upper = pack_builder().text(1, 0, u"upper").text(1, 0, u"later").bare();
    const pack_bytes lower = pack_builder().text(1, 0, u"lower").bare();
    for (const auto& [first, second] : {std::pair{upper, lower}, {lower, upper}}) {
        pack_bytes file = first;
        file.insert(file.end(), second.begin(), second.end());
        const std::span<const std::byte> all = file;
        const bool upper_first = first == upper;
        const auto beneath = StringLayer::read(all.subspan(upper_first ? first.size() : 0), pack_form::bare, nullptr);
        const auto layer = StringLayer::read(all.subspan(upper_first ? 0 : first.size()), pack_form::bare, &*beneath);
        EXPECT_EQ(text_of(*layer, 1), u"upper");
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

// Offsets in the sample: names at 16 and 22, extra at 27, count at 30, the first entry at 34 (its length at 42, its
// null at 50), the list at 52 (its count at 60, its first item at 64).
TEST(string_layer_test, refuses_a_damaged_pack_unless_the_byte_is_free)
{
    constexpr struct {
        const char* name;
        std::size_t at;
        int value;
        bool accepted = false;
    } cases[] = {
        {"signature_start", 0, 0},
        {"signature_end", 15, 0},
        {"locale_name_length", 17, 0xFF},
        {"locale_name_null", 21, 1},
        {"language_tag_length", 23, 0xFF},
        {"language_tag_null", 26, 1},
        {"extra_length", 27, 0xFF},
        {"extra_content", 28, 1, true},
        {"one_entry_more", 30, 4},
        {"entry_count", 33, 0xFF},
        {"fewer_entries_than_there_are", 30, 2, true},
        {"text_length", 43, 0xFF},
        {"text_null", 51, 1},
        {"item_count", 63, 0xFF},
        {"item_index", 65, 0xFF, true},
        {"item_index_beyond_65535", 66, 1},
        {"item_index_near_2_32", 67, 0xFF},
        {"item_length", 69, 0xFF},
        {"item_null", 78, 1},
    };
    for (const auto& [name, at, value, accepted] : cases) {
        pack_bytes pack = sample();
        pack.at(at) = static_cast<std::byte>(value);
        EXPECT_EQ(StringLayer::read(pack, pack_form::with_signature, nullptr).has_value(), accepted) << name;
    }
}

} // namespace
} // namespace tidelink
