#include "localisation/language_packs.h"

#include <gtest/gtest.h>

namespace tidelink {
namespace {

using std::u16string_view;

TEST(pack_name_test, is_taken_apart_at_its_dots)
{
    constexpr PackVersion no_version;
    const struct {
        const char* name;
        u16string_view file_name;
        u16string_view locale;
        u16string_view language;
        PackVersion version;
    } cases[] = {
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
    };
    for (const auto& [name, file_name, locale, language, version] : cases) {
        SCOPED_TRACE(name);
        const LanguagePackInfo info = parse_pack_file_name(file_name);
        EXPECT_EQ(info.locale, locale);
        EXPECT_EQ(info.name, language);
        EXPECT_EQ(info.version, version);
    }
}

TEST(pack_version_test, compares_by_position)
{
    EXPECT_LT(decode_pack_version(u"701001604"), decode_pack_version(u"702000001"));
    EXPECT_GT(decode_pack_version(u"800000000"), decode_pack_version(u"799999999"));
}

TEST(choice_test, serves_the_locale_of_the_user)
{
    const struct {
        const char* name;
        u16string_view user;
        std::vector<u16string_view> packs;
        u16string_view chosen;
    } cases[] = {
        {"whole", u"fr-CA", {u"fr", u"fr-ca"}, u"fr-ca"},
        {"language", u"fr-CA", {u"de", u"fr"}, u"fr"},
        {"capitals_are_for_choice_by_hand", u"fr-CA", {u"FR"}, u""},
        {"other_region", u"pt-PT", {u"pt-br"}, u""},
        {"script_and_region", u"zh-Hans-CN", {u"zh-hans", u"zh"}, u"zh"},
        {"without_region", u"pl", {u"pl"}, u"pl"},
        {"no_pack", u"de-DE", {}, u""},
    };
    for (const auto& [name, user, locales, chosen] : cases) {
        std::vector<LanguagePackInfo> packs;
        for (const u16string_view locale : locales)
            packs.push_back(parse_pack_file_name(locale));
        EXPECT_EQ(choose_automatically(user, packs), chosen) << name;
    }
}

TEST(find_pack_test, finds_the_first_one_with_exactly_the_locale)
{
    const std::vector packs = {parse_pack_file_name(u"DE.One.1.lpack"), parse_pack_file_name(u"de.Two.1.lpack"),
                               parse_pack_file_name(u"de.Three.1.lpack")};
    EXPECT_EQ(find_pack(packs, u"de")->name, u"Two");
    EXPECT_EQ(find_pack(packs, u"d"), nullptr);
}

TEST(path_test, leads_to_the_folder_of_packs)
{
    const struct {
        u16string_view executable;
        u16string_view folder;
        u16string_view file;
        u16string_view languages;
    } cases[] = {
        {u"C:\\Tide link\\a.exe", u"C:\\Tide link", u"a.exe", u"C:\\Tide link\\languages"},
        {u"C:/x//a.b.exe", u"C:/x", u"a.b.exe", u"C:/x\\languages"},
        {u"C:\\a.exe", u"C:", u"a.exe", u"C:languages"},
        {u"a.exe", u"", u"a.exe", u"languages"},
    };
    for (const auto& [executable, folder, file, languages] : cases) {
        EXPECT_EQ(folder_of(executable), folder);
        EXPECT_EQ(file_name_of(executable), file);
        EXPECT_EQ(joined_path(folder, u"languages"), languages);
    }
    EXPECT_EQ(joined_path(u"C:\\x\\", u"a"), u"C:\\x\\a");
    EXPECT_EQ(joined_path(u"C:/", u"a"), u"C:/a");
    EXPECT_EQ(joined_path(u"1:", u"a"), u"1:\\a") << "no drive";
}

} // namespace
} // namespace tidelink
