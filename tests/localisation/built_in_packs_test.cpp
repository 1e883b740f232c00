#include "localisation/string_tables.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace tidelink {
namespace {

std::string content_of(const char* path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(built_in_packs_test, hold_every_constant_at_an_even_address)
{
    const std::string common = content_of(STRING_PACK_FOLDER "/common.bin");
    const std::string program = content_of(STRING_PACK_FOLDER "/program.bin");
    build_string_tables({std::as_bytes(std::span(common)), std::as_bytes(std::span(program)), {}, {}});
    EXPECT_TRUE(common_strings().loaded());
    EXPECT_TRUE(program_strings().loaded());
    for (const std::uint32_t id : string_slot::ids) {
        const StringEntry* const entry = program_strings().find_or_null(id);
        ASSERT_NE(entry, nullptr) << std::hex << id;
        const std::u16string_view text = entry->is_list() ? entry->item(0) : entry->text();
        EXPECT_FALSE(text.empty()) << std::hex << id;
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(text.data()) % sizeof(char16_t), 0U) << std::hex << id;
    }
    EXPECT_EQ(program_strings().find(string_id::about_text).revision(), 2U);
    EXPECT_EQ(common_strings().find_or_null(string_id::settings), nullptr);
    build_string_tables({});
}

} // namespace
} // namespace tidelink
