#include "update/announcements.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;
using namespace tidelink;

constexpr day_number last_day{155'038};

TEST(announcements_test, a_promo_is_shown_until_its_last_day_when_it_leads_to_https)
{
    const std::u16string page = u"https://vendor.example/";
    Manifest manifest;
    EXPECT_FALSE(current_promo(manifest, last_day));
    manifest.promo = {u"[[[b New]]]", page, last_day};
    EXPECT_EQ(current_promo(manifest, last_day), &*manifest.promo);
    EXPECT_FALSE(current_promo(manifest, {last_day.days + 1}));
    for (const std::u16string& url : {u"http://vendor.example/"s, u"/new"s, page + std::u16string(2048, u'x')}) {
        manifest.promo->url = url;
        EXPECT_FALSE(current_promo(manifest, last_day));
    }
}

TEST(announcements_test, texts_are_one_short_line)
{
    const std::u16string longest(80, u'x');
    EXPECT_EQ(single_line(u"a\nb\tc\x85\u2028d"), u"a b c  d");
    EXPECT_EQ(single_line(longest), longest);
    EXPECT_EQ(single_line(longest.substr(1) + u"\U0001F600"), longest.substr(1) + u"…");
}

TEST(announcements_test, newer_packs_of_installed_languages_are_named_once)
{
    const std::vector<LanguagePackInfo> installed{
        parse_pack_file_name(u"de.Deutsch.701001604.lpack"), parse_pack_file_name(u"de.Old.600000000.lpack"),
        parse_pack_file_name(u"fr.Fran.701000099.lpack"), parse_pack_file_name(u"pl.Polski.701001604.lpack")};
    constexpr std::uint32_t own = 701001604;
    Manifest manifest;
    EXPECT_EQ(newer_packs(manifest, installed, own), u"");
    manifest.language_packs = {
        {u"the installed one", u"de", 701001604, own, {}}, {u"later", u"de", 701001605, own + 1, {}},
        {u"Deutsch\n", u"de", 701001605, own, {}},         {u"again", u"de", 702000000, own, {}},
        {u"not installed", u"it", 702000000, own, {}},     {u"in capitals", u"FR", 702000000, own, {}},
        {u"Fran", u"fr", 701010000, own - 1, {}},          {u"older", u"pl", 701001603, own, {}}};
    EXPECT_EQ(newer_packs(manifest, installed, own), u"Deutsch , Fran");
    EXPECT_EQ(newer_packs(manifest, {}, own), u"");
}

} // namespace
