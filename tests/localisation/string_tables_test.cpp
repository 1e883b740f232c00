#include "localisation/string_keys.h"
#include "localisation/string_tables.h"
#include "pack_builder.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace tidelink {
namespace {

using support::pack_builder;
using support::pack_bytes;

class string_tables_test : public testing::Test {
protected:
    ~string_tables_test() override { build_string_tables({}); } // the packs of a test end with it
};

// From the top: the translation's program module, the built-in one, the translation's common module, the built-in one.
TEST_F(string_tables_test, look_from_the_program_down_to_the_common_texts)
{
    constexpr std::uint32_t no_constant = 1;
    constexpr std::uint32_t in_the_translation_only = 2;
    const pack_bytes common = pack_builder()
                                  .text(string_id::ok, 1, u"OK")
                                  .text(string_id::cancel, 0, u"")
                                  .text(string_id::stop, 2, u"Stop")
                                  .text(string_id::close, 0, u"Close")
                                  .list(string_id::service_status, 0, {{1, u"one"}})
                                  .text(no_constant, 0, u"other")
                                  .with_signature();
    const pack_bytes program = pack_builder().text(string_id::settings, 0, u"Settings").with_signature();
    const pack_bytes common_german = pack_builder("DEU", "de")
                                         .text(string_id::ok, 1, u"Gut")
                                         .text(string_id::stop, 1, u"made for an older text")
                                         .text(in_the_translation_only, 7, u"neu")
                                         .bare();
    const pack_bytes program_german = pack_builder("DEU", "de")
                                          .text(string_id::settings, 0, u"Einstellungen")
                                          .text(string_id::close, 0, u"from the program")
                                          .bare();
    build_string_tables({common, program, common_german, program_german});

    EXPECT_TRUE(common_strings().loaded());
    EXPECT_TRUE(program_strings().loaded());
    EXPECT_EQ(text(string_id::ok), u"Gut");
    EXPECT_EQ(text(string_id::stop), u"Stop");
    EXPECT_EQ(text(string_id::close), u"from the program");
    EXPECT_EQ(common_strings().text(string_id::close), u"Close");
    EXPECT_EQ(text(string_id::settings), u"Einstellungen");
    EXPECT_EQ(text(string_id::cancel), u"");
    EXPECT_EQ(text(no_constant), u"other");
    EXPECT_EQ(text(in_the_translation_only), u"neu");
    EXPECT_EQ(text(string_id::service_status), u"");
    EXPECT_EQ(item(string_id::service_status, 1), u"one");
    EXPECT_THAT([] { text(string_id::apply); }, testing::ThrowsMessage<std::runtime_error>("string not found"));
    EXPECT_EQ(common_strings().find_or_null(string_id::settings), nullptr);

    build_string_tables({common, program, common_german, {}});
    EXPECT_EQ(text(string_id::ok), u"Gut") << "a pack may have the common module alone";
    EXPECT_EQ(text(string_id::settings), u"Settings");

    build_string_tables({});
    EXPECT_FALSE(common_strings().loaded());
    EXPECT_THAT([] { text(string_id::ok); }, testing::ThrowsMessage<std::runtime_error>("string not found"));
}

TEST_F(string_tables_test, a_pack_with_one_malformed_module_is_not_used_at_all)
{
    const pack_bytes common = pack_builder().text(string_id::ok, 0, u"OK").with_signature();
    const pack_bytes program = pack_builder().text(string_id::settings, 0, u"Settings").with_signature();
    const pack_bytes common_german = pack_builder().text(string_id::ok, 0, u"Gut").bare();
    const pack_bytes program_german = pack_builder().text(string_id::settings, 0, u"Einstellungen").bare();
    const auto cut = [](const pack_bytes& module) { return std::span(module).first(module.size() - 1); };
    for (const string_packs& packs : {string_packs{common, program, cut(common_german), program_german},
                                      {common, program, common_german, cut(program_german)}}) {
        build_string_tables(packs);
        EXPECT_EQ(text(string_id::ok), u"OK");
        EXPECT_EQ(text(string_id::settings), u"Settings");
    }
}

TEST_F(string_tables_test, keep_corrections_by_module_and_key)
{
    const pack_bytes common =
        pack_builder().text(string_id::ok, 0, u"OK").text(string_id::stop, 0, u"S&top").with_signature();
    const pack_bytes program =
        pack_builder().text(string_id::security, 0, u"S").text(string_id::update_offer, 0, u"U").with_signature();
    build_string_tables({common, program, {}, {}});
    correct_string(string_id::ok, u"not kept");
    set_corrections_mode(true);
    correct_string(string_id::security, u"Safety");
    correct_string(string_id::update_offer, u"Get it");
    correct_string(string_id::stop, u"&Halt");
    EXPECT_EQ(common_strings().corrections(), (Corrections{{u"Stop", u"&Halt"}}));
    EXPECT_EQ(program_strings().corrections(),
              (Corrections{{u"Security...", u"Safety"}, {u"Update offer", u"Get it"}}));
    EXPECT_EQ(text(string_id::stop), u"S&top");
    EXPECT_EQ(key_of(1), u"");
    EXPECT_TRUE(StringTable::above(common_strings()).corrections_mode());
}

TEST(string_table_test, a_refused_built_in_pack_leaves_the_lower_layers)
{
    const pack_bytes common_pack = pack_builder().text(1, 0, u"common").with_signature();
    const pack_bytes no_signature = pack_builder().text(2, 0, u"program").bare();
    const pack_bytes translation = pack_builder().text(1, 0, u"translated").bare();
    StringTable common;
    EXPECT_TRUE(common.layer({}, pack_form::with_signature)) << "nothing was refused";
    EXPECT_FALSE(common.layer(no_signature, pack_form::with_signature)) << "refused, and nothing is beneath";
    common.load(common_pack, {});
    EXPECT_TRUE(common.layer(no_signature, pack_form::with_signature)) << "the layer from before is there";
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
