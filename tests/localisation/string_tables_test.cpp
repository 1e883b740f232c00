#include "localisation/string_tables.h"
#include "pack_builder.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace tidelink {
namespace {

using support::pack_builder;
using support::pack_bytes;

// From the top: the translation's program module, the built-in one, the translation's common module, the built-in one.
TEST(string_tables_test, look_from_the_program_down_to_the_common_texts)
{
    constexpr std::uint32_t no_constant = 1;
    constexpr std::uint32_t in_the_translation_only = 2;
    const pack_bytes common = pack_builder()
                                  .text(string_id::ok, 1, u"OK")
                                  .text(string_id::stop, 2, u"Stop")
                                  .text(string_id::close, 0, u"Close")
                                  .list(string_id::service_status, 0, {{1, u"one"}})
                                  .text(no_constant, 0, u"other")
                                  .with_signature();
    const pack_bytes program = pack_builder().text(string_id::settings, 0, u"Settings").with_signature();
    const pack_bytes common_german = pack_builder()
                                         .text(string_id::ok, 1, u"Gut")
                                         .text(string_id::stop, 1, u"made for an older text")
                                         .text(in_the_translation_only, 7, u"neu")
                                         .bare();
    const pack_bytes program_german = pack_builder()
                                          .text(string_id::settings, 0, u"Einstellungen")
                                          .text(string_id::close, 0, u"from the program")
                                          .bare();
    build_string_tables({common, program, common_german, program_german});
    EXPECT_EQ(text(string_id::ok), u"Gut");
    EXPECT_EQ(text(string_id::stop), u"Stop");
    EXPECT_EQ(text(string_id::close), u"from the program");
    EXPECT_EQ(common_strings().text(string_id::close), u"Close");
    EXPECT_EQ(text(string_id::settings), u"Einstellungen");
    EXPECT_EQ(text(no_constant), u"other");
    EXPECT_EQ(text(in_the_translation_only), u"neu");
    EXPECT_EQ(text(string_id::service_status), u"");
    EXPECT_EQ(item(string_id::service_status, 1), u"one");
    EXPECT_THAT([] { text(string_id::apply); }, testing::ThrowsMessage<std::runtime_error>("string not found"));

    build_string_tables({common, program, common_german, {}});
    EXPECT_EQ(text(string_id::ok), u"Gut") << "a pack may have the common module alone";
    EXPECT_EQ(text(string_id::settings), u"Settings");
    build_string_tables({});
}

} // namespace
} // namespace tidelink
