#include "localisation/language_pack.h"
#include "localisation/pack_name_hash.h"
#include "pack_builder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace tidelink {
namespace {

using support::pack_bytes;

struct module_place {
    std::uint32_t hash;
    std::int32_t offset;
};

constexpr std::array<std::uint8_t, 16> language_pack_signature = {0x91, 0x58, 0x27, 0xFD, 0x72, 0xA1, 0xC1, 0x4C,
                                                                  0x8A, 0xBA, 0x56, 0x4E, 0xFC, 0x98, 0xDD, 0x21};
constexpr std::int32_t file_size = 100;

/// A file of 100 bytes, with a directory.
pack_bytes file_with(const std::vector<module_place>& directory)
{
    pack_bytes file;
    support::append(file, language_pack_signature);
    support::append(file, static_cast<std::uint32_t>(directory.size()));
    for (const module_place& place : directory) {
        support::append(file, place.hash);
        support::append(file, place.offset);
    }
    file.resize(file_size);
    return file;
}

constexpr std::uint32_t hash = PackNameHash(u"common");

/// Where the module is; nothing when it is not found.
std::optional<std::ptrdiff_t> offset_of(const pack_bytes& file)
{
    const std::span<const std::byte> found = findModule(file, u"common");
    if (found.data() == nullptr)
        return std::nullopt;
    EXPECT_EQ(found.data() + found.size(), file.data() + file.size());
    return found.data() - file.data();
}

TEST(language_pack_test, modules_are_found_within_the_file)
{
    const struct {
        const char* name;
        std::vector<module_place> directory;
        std::optional<std::ptrdiff_t> offset;
        bool is_sound = true;
    } cases[] = {
        {"none", {}, std::nullopt},
        {"lower_one_of_equal_hashes", {{hash - 1, 60}, {hash, 61}, {hash, 62}, {hash, 63}}, 61},
        {"only_others", {{hash - 1, 50}, {hash + 1, 40}}, std::nullopt},
        {"offset_before_the_file", {{hash, -1}}, std::nullopt, false},
        {"offset_in_the_directory", {{hash, 27}}, 27, false},
        {"offset_at_the_end", {{hash, file_size}}, file_size},
        {"offset_behind_the_file", {{hash, file_size + 1}}, std::nullopt, false},
        {"offset_of_another_module_outside", {{hash, 50}, {hash + 1, INT32_MIN}}, 50, false},
    };
    for (const auto& [name, directory, offset, is_sound] : cases) {
        const pack_bytes file = file_with(directory);
        EXPECT_EQ(offset_of(file), offset) << name;
        EXPECT_EQ(is_language_pack(file), is_sound) << name;
    }
}

TEST(language_pack_test, what_is_cut_short_or_has_another_signature_is_refused)
{
    const pack_bytes whole = file_with({{hash, 36}, {hash + 1, 36}});
    constexpr std::ptrdiff_t directory_end = 20 + 2 * 8;
    EXPECT_TRUE(is_language_pack(pack_bytes(whole.begin(), whole.begin() + directory_end)));
    for (std::ptrdiff_t size = 0; size < directory_end; ++size) {
        const pack_bytes cut(whole.begin(), whole.begin() + size);
        EXPECT_FALSE(is_language_pack(cut)) << size;
        EXPECT_EQ(offset_of(cut), std::nullopt) << size;
    }
    pack_bytes other = whole;
    other[15] ^= std::byte{1};
    EXPECT_FALSE(is_language_pack(other));
}

} // namespace
} // namespace tidelink
