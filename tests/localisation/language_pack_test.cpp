#include "localisation/language_pack.h"
#include "localisation/pack_name_hash.h"
#include "pack_builder.h"
#include "support/cases.h"

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

constexpr std::int32_t file_size = 100;

/// A file of 100 bytes, with a directory.
pack_bytes file_with(const std::vector<module_place>& directory)
{
    pack_bytes file;
    support::append_language_pack_signature(file);
    support::append(file, static_cast<std::uint32_t>(directory.size()));
    for (const module_place& place : directory) {
        support::append(file, place.hash);
        support::append(file, place.offset);
    }
    file.resize(file_size);
    return file;
}

/// Where the module is; nothing when it is not found.
std::optional<std::ptrdiff_t> offset_of(std::u16string_view module, const pack_bytes& file)
{
    const std::span<const std::byte> found = findModule(file, module);
    if (found.data() == nullptr)
        return std::nullopt;
    EXPECT_EQ(found.data() + found.size(), file.data() + file.size());
    return found.data() - file.data();
}

constexpr std::uint32_t hash = PackNameHash(u"common");

struct directory_case {
    const char* name;
    std::vector<module_place> directory;
    std::optional<std::ptrdiff_t> offset;
    bool is_sound = true;
};

class language_pack_test : public testing::TestWithParam<directory_case> {};

TEST_P(language_pack_test, directory)
{
    const pack_bytes file = file_with(GetParam().directory);
    EXPECT_EQ(offset_of(u"common", file), GetParam().offset);
    EXPECT_EQ(is_language_pack(file), GetParam().is_sound);
}

INSTANTIATE_TEST_SUITE_P(
    modules, language_pack_test,
    testing::Values(directory_case{"none", {}, std::nullopt},
                    directory_case{"first_of_two", {{hash, 40}, {hash + 1, 50}}, 40},
                    directory_case{"last_of_two", {{hash - 1, 40}, {hash, 50}}, 50},
                    directory_case{
                        "lower_one_of_equal_hashes", {{hash - 1, 60}, {hash, 61}, {hash, 62}, {hash, 63}}, 61},
                    directory_case{"only_smaller", {{hash - 2, 40}, {hash - 1, 50}}, std::nullopt},
                    directory_case{"only_larger", {{hash + 1, 40}}, std::nullopt},
                    directory_case{"offset_before_the_file", {{hash, -1}}, std::nullopt, false},
                    directory_case{"offset_in_the_directory", {{hash, 27}}, 27, false},
                    directory_case{"offset_right_behind_the_directory", {{hash, 28}}, 28},
                    directory_case{"offset_at_the_end", {{hash, file_size}}, file_size},
                    directory_case{"offset_behind_the_file", {{hash, file_size + 1}}, std::nullopt, false},
                    directory_case{"offset_of_another_module_outside", {{hash, 50}, {hash + 1, INT32_MIN}}, 50, false}),
    support::name_of_row);

TEST(language_pack_test, module_names_fold_and_lose_their_folder)
{
    const pack_bytes file = file_with({{hash - 9, 60}, {hash - 1, 61}, {hash, 62}, {hash + 1, 63}, {hash + 7, 64}});
    EXPECT_EQ(offset_of(u"COMMON", file), 62);
    EXPECT_EQ(offset_of(u"folder\\Common", file), 62);
    EXPECT_EQ(offset_of(u"tl_server_config.exe", file), std::nullopt);
}

TEST(language_pack_test, what_is_cut_short_or_has_another_signature_is_refused)
{
    const pack_bytes whole = file_with({{hash, 36}, {hash + 1, 36}});
    constexpr std::ptrdiff_t directory_end = 20 + 2 * 8;
    EXPECT_TRUE(is_language_pack(pack_bytes(whole.begin(), whole.begin() + directory_end)));
    for (std::ptrdiff_t size = 0; size < directory_end; ++size) {
        const pack_bytes cut(whole.begin(), whole.begin() + size);
        EXPECT_FALSE(is_language_pack(cut)) << size;
        EXPECT_EQ(offset_of(u"common", cut), std::nullopt) << size;
    }
    for (std::size_t at = 0; at < 16; ++at) {
        pack_bytes other = whole;
        other[at] ^= std::byte{1};
        EXPECT_FALSE(is_language_pack(other)) << at;
    }
}

} // namespace
} // namespace tidelink
