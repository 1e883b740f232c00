#include "localisation/string_table.h"
#include "pack_builder.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace tidelink {
namespace {

using support::pack_builder;
using support::pack_bytes;

TEST(string_table_test, without_layers_finds_nothing)
{
    const StringTable table;
    EXPECT_FALSE(table.loaded());
    EXPECT_EQ(table.find_or_null(1), nullptr);
    EXPECT_THAT([&] { table.text(1); }, testing::ThrowsMessage<std::runtime_error>("string not found"));
    EXPECT_THAT([&] { table.item(1, 0); }, testing::ThrowsMessage<std::runtime_error>("string not found"));
}

TEST(string_table_test, serves_texts_and_items)
{
    const pack_bytes pack = pack_builder().text(1, 0, u"one").list(2, 0, {{3, u"three"}}).bare();
    StringTable table;
    ASSERT_TRUE(table.layer(pack, pack_form::bare));
    EXPECT_EQ(table.find(1).id(), 1U);
    EXPECT_EQ(table.text(1), u"one");
    EXPECT_EQ(table.item(2, 3), u"three");
    EXPECT_EQ(table.text(2), u"");
    EXPECT_EQ(table.item(1, 0), u"");
    EXPECT_THAT([&] { table.find(3); }, testing::ThrowsMessage<std::runtime_error>("string not found"));
}

TEST(string_table_test, tells_whether_it_has_a_layer)
{
    const pack_bytes pack = pack_builder().text(1, 0, u"one").bare();
    StringTable table;
    EXPECT_TRUE(table.layer({}, pack_form::with_signature));
    EXPECT_FALSE(table.layer(pack, pack_form::with_signature)) << "refused: no signature, and nothing beneath";
    EXPECT_TRUE(table.layer(pack, pack_form::bare));
    EXPECT_TRUE(table.layer(pack, pack_form::with_signature)) << "refused, but the layer from before is there";
    EXPECT_EQ(table.text(1), u"one");
}

// Common and program table, each of a built-in pack and a translation: text 1 is translated, 2 is stale, 3 is not
// translated, 4 exists in the translation only.
TEST(string_table_test, looks_from_the_program_down_to_the_common_texts)
{
    const auto english = [](std::uint32_t first) {
        return pack_builder()
            .text(first + 1, 1, u"english")
            .text(first + 2, 2, u"english")
            .text(first + 3, 0, u"english");
    };
    const auto german = [](std::uint32_t first) {
        return pack_builder("DEU", "de")
            .text(first + 1, 1, u"german")
            .text(first + 2, 1, u"german")
            .text(first + 4, 0, u"german");
    };
    constexpr std::uint32_t common_id = 100;
    constexpr std::uint32_t program_id = 200;
    const pack_bytes common_english = english(common_id).with_signature();
    const pack_bytes common_german = german(common_id).bare();
    const pack_bytes program_english = english(program_id).with_signature();
    const pack_bytes program_german = german(program_id).text(common_id + 3, 0, u"from the program").bare();

    StringTable common;
    common.load(common_english, common_german);
    StringTable program = StringTable::above(common);
    EXPECT_FALSE(program.loaded());
    EXPECT_EQ(program.text(common_id + 1), u"german");
    program.load(program_english, program_german);

    EXPECT_TRUE(common.loaded());
    EXPECT_TRUE(program.loaded());
    for (const auto& [table, first] : {std::pair{&common, common_id}, {&program, common_id}, {&program, program_id}}) {
        EXPECT_EQ(table->text(first + 1), u"german");
        EXPECT_EQ(table->text(first + 2), u"english");
        EXPECT_EQ(table->text(first + 4), u"german");
    }
    EXPECT_EQ(program.text(program_id + 3), u"english");
    EXPECT_EQ(program.text(common_id + 3), u"from the program");
    EXPECT_EQ(common.text(common_id + 3), u"english");
    EXPECT_EQ(common.find_or_null(program_id + 1), nullptr);
}

TEST(string_table_test, a_refused_built_in_pack_leaves_the_lower_layers)
{
    const pack_bytes common_pack = pack_builder().text(1, 0, u"common").with_signature();
    const pack_bytes no_signature = pack_builder().text(2, 0, u"program").bare();
    const pack_bytes translation = pack_builder().text(1, 0, u"translated").bare();
    StringTable common;
    common.load(common_pack, {});
    StringTable program = StringTable::above(common);
    program.load(no_signature, translation);
    EXPECT_FALSE(program.loaded());
    EXPECT_EQ(program.text(1), u"translated");
    EXPECT_EQ(program.find_or_null(2), nullptr);

    StringTable alone;
    alone.load(no_signature, translation);
    EXPECT_FALSE(alone.loaded());
    EXPECT_EQ(alone.find_or_null(1), nullptr) << "nothing is laid over a pack that was refused";
}

} // namespace
} // namespace tidelink
