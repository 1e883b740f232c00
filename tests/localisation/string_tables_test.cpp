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

TEST_F(string_tables_test, serve_the_program_table)
{
    constexpr std::uint32_t no_constant = 1;
    const pack_bytes common = pack_builder()
                                  .text(string_id::ok, 0, u"OK")
                                  .text(string_id::cancel, 0, u"")
                                  .list(string_id::service_status, 0, {{1, u"one"}})
                                  .text(no_constant, 0, u"other")
                                  .with_signature();
    const pack_bytes program = pack_builder().text(string_id::settings, 0, u"Settings").with_signature();
    const pack_bytes common_german = pack_builder().text(string_id::ok, 0, u"Gut").bare();
    const pack_bytes program_german = pack_builder().text(string_id::settings, 0, u"Einstellungen").bare();
    build_string_tables({common, program, common_german, program_german});

    EXPECT_TRUE(common_strings().loaded());
    EXPECT_TRUE(program_strings().loaded());
    EXPECT_EQ(text(string_id::ok), u"Gut");
    EXPECT_EQ(text(string_id::settings), u"Einstellungen");
    EXPECT_EQ(text(string_id::cancel), u"");
    EXPECT_EQ(text(no_constant), u"other");
    EXPECT_EQ(text(string_id::service_status), u"");
    EXPECT_EQ(item(string_id::service_status, 1), u"one");
    EXPECT_THAT([] { text(string_id::apply); }, testing::ThrowsMessage<std::runtime_error>("string not found"));
    EXPECT_EQ(common_strings().find_or_null(string_id::settings), nullptr);

    build_string_tables({});
    EXPECT_FALSE(common_strings().loaded());
    EXPECT_THAT([] { text(string_id::ok); }, testing::ThrowsMessage<std::runtime_error>("string not found"));
}

} // namespace
} // namespace tidelink
