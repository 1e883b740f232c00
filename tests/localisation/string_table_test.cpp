#include "localisation/string_table.h"
#include "pack_builder.h"

#include <gtest/gtest.h>

namespace tidelink {
namespace {

using support::pack_builder;
using support::pack_bytes;

TEST(string_table_test, tells_whether_it_has_a_layer)
{
    const pack_bytes pack = pack_builder().text(1, 0, u"one").bare();
    StringTable table;
    EXPECT_EQ(table.find_or_null(1), nullptr);
    EXPECT_TRUE(table.layer({}, pack_form::with_signature));
    EXPECT_FALSE(table.layer(pack, pack_form::with_signature)) << "refused: no signature, and nothing beneath";
    EXPECT_TRUE(table.layer(pack, pack_form::bare));
    EXPECT_TRUE(table.layer(pack, pack_form::with_signature)) << "refused, but the layer from before is there";
    EXPECT_EQ(table.text(1), u"one");
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
