#include "localisation/language_pack.h"
#include "localisation/pack_name_hash.h"
#include "pack_builder.h"
#include "support/cases.h"

#include <optional>
#include <vector>

namespace tidelink {
namespace {

using support::append;
using support::pack_bytes;

struct module_place {
    std::uint32_t hash;
    std::int32_t offset;
};

constexpr std::int32_t file_size = 100;

/// A file of 100 bytes, with a directory.
pack_bytes file_with(const std::vector<module_place>& directory)
{
    pack_bytes file(16, std::byte{0});
    append(file, static_cast<std::uint32_t>(directory.size()));
    for (const module_place& place : directory) {
        append(file, place.hash);
        append(file, place.offset);
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

TEST(find_module_test, finds_each_of_several)
{
    const pack_bytes file = file_with({{hash - 9, 50}, {hash - 1, 51}, {hash, 52}, {hash + 1, 53}, {hash + 7, 54}});
    EXPECT_EQ(offset_of(u"common", file), 52);
    EXPECT_EQ(offset_of(u"COMMON", file), 52);
    EXPECT_EQ(offset_of(u"folder\\Common", file), 52);
    EXPECT_EQ(offset_of(u"tl_server_config.exe", file), std::nullopt);
}

struct directory_case {
    const char* name;
    std::vector<module_place> directory;
    std::optional<std::ptrdiff_t> offset;
};

class find_module_case : public testing::TestWithParam<directory_case> {};

TEST_P(find_module_case, answers)
{
    EXPECT_EQ(offset_of(u"common", file_with(GetParam().directory)), GetParam().offset);
}

INSTANTIATE_TEST_SUITE_P(
    directory, find_module_case,
    testing::Values(directory_case{"empty", {}, std::nullopt},
                    directory_case{"first_of_two", {{hash, 40}, {hash + 1, 50}}, 40},
                    directory_case{"last_of_two", {{hash - 1, 40}, {hash, 50}}, 50},
                    directory_case{
                        "lower_one_of_equal_hashes", {{hash - 1, 40}, {hash, 50}, {hash, 60}, {hash, 70}}, 50},
                    directory_case{"only_smaller", {{hash - 2, 40}, {hash - 1, 50}}, std::nullopt},
                    directory_case{"only_larger", {{hash + 1, 40}}, std::nullopt},
                    directory_case{"offset_before_the_file", {{hash, -1}}, std::nullopt},
                    directory_case{"offset_behind_the_file", {{hash, file_size + 1}}, std::nullopt}),
    support::name_of_row);

TEST(find_module_test, refuses_a_directory_that_is_cut_short)
{
    const pack_bytes whole = file_with({{hash, 30}, {hash + 1, 30}});
    constexpr std::size_t directory_end = 20 + 2 * 8;
    for (std::size_t size = 0; size < directory_end; ++size)
        EXPECT_EQ(offset_of(u"common", pack_bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))),
                  std::nullopt)
            << size;
}

} // namespace
} // namespace tidelink
