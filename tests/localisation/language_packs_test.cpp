#include "localisation/language_packs.h"
#include "support/cases.h"

#include <gtest/gtest.h>

#include <array>

namespace tidelink {
namespace {

using std::u16string_view;

struct name_case {
    const char* name;
    u16string_view file_name;
    u16string_view locale;
    u16string_view language;
    PackVersion version;
};

class pack_name_test : public testing::TestWithParam<name_case> {};

TEST_P(pack_name_test, is_taken_apart_at_its_dots)
{
    const LanguagePackInfo info = parse_pack_file_name(GetParam().file_name);
    EXPECT_EQ(info.locale, GetParam().locale);
    EXPECT_EQ(info.name, GetParam().language);
    EXPECT_EQ(info.version, GetParam().version);
}

constexpr PackVersion no_version;

INSTANTIATE_TEST_SUITE_P(
    language_packs, pack_name_test,
    testing::ValuesIn(std::to_array<name_case>({
        {"all_parts", u"de.Deutsch.701001604.lpack", u"de", u"Deutsch", {7, 1, 0, 1604}},
        {"locale_alone", u"de.lpack", u"de", u"lpack", no_version},
        {"no_version", u"pt-br.Português..lpack", u"pt-br", u"Português", no_version},
        // Behind the second dot stands the last part: l, p, a, c and k count as much as they are behind '0'.
        {"extension_in_place_of_a_version", u"de.Deutsch.lpack", u"de", u"Deutsch", {0, 0, 66, 9469}},
        {"letters_in_the_version", u"de.Deutsch.12x.lpack", u"de", u"Deutsch", {0, 0, 0, 192}},
        {"more_parts", u"de.Deutsch.701001604.old.lpack", u"de", u"Deutsch", {7, 1, 0, 1604}},
        {"no_locale", u".lpack", u"", u"lpack", no_version},
        {"largest_version", u"a.b.2147483647.lpack", u"a", u"b", {21, 47, 48, 3647}},
        {"version_that_wraps", u"a.b.4294967297.lpack", u"a", u"b", {0, 0, 0, 1}},
        {"negative_version", u"a.b.4294967295.lpack", u"a", u"b", {0, 0, 0, 0xFFFFFFFF}},
    })),
    support::name_of_row);

TEST(pack_version_test, compares_by_position)
{
    EXPECT_LT(decode_pack_version(u"701001604"), decode_pack_version(u"702000001"));
    EXPECT_GT(decode_pack_version(u"800000000"), decode_pack_version(u"799999999"));
}

struct choice_case {
    const char* name;
    u16string_view user;
    std::vector<u16string_view> packs;
    u16string_view chosen;
};

class choice_test : public testing::TestWithParam<choice_case> {};

TEST_P(choice_test, serves_the_locale_of_the_user)
{
    std::vector<LanguagePackInfo> packs;
    for (const u16string_view locale : GetParam().packs)
        packs.push_back(parse_pack_file_name(locale));
    EXPECT_EQ(choose_automatically(GetParam().user, packs), GetParam().chosen);
}

INSTANTIATE_TEST_SUITE_P(language_packs, choice_test,
                         testing::Values(choice_case{"whole", u"fr-CA", {u"fr", u"fr-ca"}, u"fr-ca"},
                                         choice_case{"language", u"fr-CA", {u"de", u"fr"}, u"fr"},
                                         choice_case{"capitals_are_for_choice_by_hand", u"fr-CA", {u"FR"}, u""},
                                         choice_case{"other_region", u"pt-PT", {u"pt-br"}, u""},
                                         choice_case{"script_and_region", u"zh-Hans-CN", {u"zh-hans", u"zh"}, u"zh"},
                                         choice_case{"without_region", u"pl", {u"pl"}, u"pl"},
                                         choice_case{"no_pack", u"de-DE", {}, u""}),
                         support::name_of_row);

TEST(find_pack_test, finds_the_first_one_with_exactly_the_locale)
{
    const std::vector packs = {parse_pack_file_name(u"DE.One.1.lpack"), parse_pack_file_name(u"de.Two.1.lpack"),
                               parse_pack_file_name(u"de.Three.1.lpack")};
    EXPECT_EQ(find_pack(packs, u"de")->name, u"Two");
    EXPECT_EQ(find_pack(packs, u"d"), nullptr);
}

struct path_case {
    const char* name;
    u16string_view executable;
    u16string_view folder;
    u16string_view file;
    u16string_view languages;
};

class path_test : public testing::TestWithParam<path_case> {};

TEST_P(path_test, leads_to_the_folder_of_packs)
{
    EXPECT_EQ(folder_of(GetParam().executable), GetParam().folder);
    EXPECT_EQ(file_name_of(GetParam().executable), GetParam().file);
    EXPECT_EQ(joined_path(GetParam().folder, u"languages"), GetParam().languages);
}

INSTANTIATE_TEST_SUITE_P(language_packs, path_test,
                         testing::ValuesIn(std::to_array<path_case>({
                             {"usual", u"C:\\Tide link\\a.exe", u"C:\\Tide link", u"a.exe",
                              u"C:\\Tide link\\languages"},
                             {"slashes", u"C:/x//a.b.exe", u"C:/x", u"a.b.exe", u"C:/x\\languages"},
                             {"drive", u"C:\\a.exe", u"C:", u"a.exe", u"C:languages"},
                             {"bare_name", u"a.exe", u"", u"a.exe", u"languages"},
                         })),
                         support::name_of_row);

TEST(joined_path_test, puts_a_separator_only_where_none_is)
{
    EXPECT_EQ(joined_path(u"C:\\x\\", u"a"), u"C:\\x\\a");
    EXPECT_EQ(joined_path(u"C:/", u"a"), u"C:/a");
    EXPECT_EQ(joined_path(u"1:", u"a"), u"1:\\a") << "no drive";
}

} // namespace
} // namespace tidelink
