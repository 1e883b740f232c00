#include "built_in_packs.h"
#include "localisation/string_tables.h"

#include <gtest/gtest.h>

namespace tidelink {
namespace {

class built_in_packs_test : public testing::Test {
protected:
    static void SetUpTestSuite() { support::load_built_in_packs(); }
};

TEST_F(built_in_packs_test, are_accepted)
{
    EXPECT_TRUE(common_strings().loaded());
    EXPECT_TRUE(program_strings().loaded());
}

TEST_F(built_in_packs_test, hold_every_constant_at_an_even_address)
{
    for (const std::uint32_t id : string_slot::ids) {
        const StringEntry* const entry = program_strings().find_or_null(id);
        ASSERT_NE(entry, nullptr) << std::hex << id;
        const std::u16string_view text = entry->text().empty() ? entry->item(0) : entry->text();
        EXPECT_FALSE(text.empty()) << std::hex << id;
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(text.data()) % sizeof(char16_t), 0U) << std::hex << id;
        EXPECT_EQ(text.data()[text.size()], u'\0') << std::hex << id;
    }
}

TEST_F(built_in_packs_test, hold_the_english_texts)
{
    EXPECT_EQ(text(string_id::security), u"Security…");
    EXPECT_EQ(text(string_id::stop), u"S&top");
    EXPECT_EQ(
        text(string_id::update_offer),
        u"Tidelink Port Server version {0}.{1w2arf0}.{2w2arf0}.{3w4arf0} is available. Do you want to upgrade now?");
    EXPECT_EQ(item(string_id::service_status, 0), u"Running as standalone");
    EXPECT_EQ(item(string_id::service_status, 4), u"Unknown");
    EXPECT_EQ(item(string_id::service_status, 5), u"");
    EXPECT_EQ(program_strings().find(string_id::about_text).revision(), 2U);
    EXPECT_EQ(program_strings().find(string_id::service_status).revision(), 0U);
}

TEST_F(built_in_packs_test, keep_the_modules_apart)
{
    EXPECT_EQ(common_strings().find_or_null(string_id::settings), nullptr);
    EXPECT_EQ(common_strings().text(string_id::about), u"&About");
}

} // namespace
} // namespace tidelink
