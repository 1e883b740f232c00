#include "localisation/language_packs.h"

#include <gtest/gtest.h>

namespace tidelink {
namespace {

using std::u16string_view;

TEST(pack_name_test, is_taken_apart_at_its_dots)
{
    const struct {
        const char* name;
        u16string_view file_name;
        u16string_view locale;
        u16string_view language;
        PackVersion version;
    } cases[] = {
        {"all_parts", u"de.Deutsch.701001604.lpack", u"de", u"Deutsch", {7, 1, 0, 1604}},
        {"locale_alone", u"de.lpack", u"de", u"lpack", {}},
        // Behind the second dot stands the last part: l, p, a, c and k count as much as they are behind '0'.
        {"extension_in_place_of_a_version", u"de.Deutsch.lpack", u"de", u"Deutsch", {0, 0, 66, 9469}},
        {"version_that_wraps", u"a.b.4294967297.lpack", u"a", u"b", {0, 0, 0, 1}},
    };
    for (const auto& [name, file_name, locale, language, version] : cases) {
        SCOPED_TRACE(name);
        const LanguagePackInfo info = parse_pack_file_name(file_name);
        EXPECT_EQ(info.locale, locale);
        EXPECT_EQ(info.name, language);
        EXPECT_EQ(info.version, version);
    }
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
        {"script_and_region", u"zh-Hans-CN", {u"zh-hans", u"zh"}, u"zh"},
    };
    for (const auto& [name, user, locales, chosen] : cases) {
        std::vector<LanguagePackInfo> packs;
        for (const u16string_view locale : locales)
            packs.push_back(parse_pack_file_name(locale));
        EXPECT_EQ(choose_automatically(user, packs), chosen) << name;
    }
}

} // namespace
} // namespace tidelink
