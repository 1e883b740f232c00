#include "support/cases.h"
#include "update/announcements.h"

#include <gtest/gtest.h>

namespace {

using namespace tidelink;

constexpr day_number last_day{155'038};

struct promo_case {
    const char* name;
    Promo promo;
    std::optional<std::u16string> shown;
};
class promo_test : public testing::TestWithParam<promo_case> {};

TEST_P(promo_test, is_one_line_that_leads_to_https)
{
    Manifest manifest;
    manifest.promo = GetParam().promo;
    const Promo* const promo = current_promo(manifest, last_day);
    ASSERT_EQ(promo != nullptr, GetParam().shown.has_value());
    if (promo)
        EXPECT_EQ(single_line(promo->title), GetParam().shown);
}

const std::u16string page = u"https://vendor.example/";

INSTANTIATE_TEST_SUITE_P(
    promos, promo_test,
    testing::ValuesIn(std::vector<promo_case>{
        {"on_its_last_day", {u"[[[b New]]]", page, last_day}, u"[[[b New]]]"},
        {"the_day_after", {u"New", page, {last_day.days - 1}}, std::nullopt},
        {"over_http", {u"New", u"http://vendor.example/", last_day}, std::nullopt},
        {"on_the_update_host", {u"New", u"/new", last_day}, std::nullopt},
        {"of_too_long_an_address", {u"New", page + std::u16string(2048, u'x'), last_day}, std::nullopt},
        {"of_several_lines", {u"a\nb\tc\x85\u2028d", page, last_day}, u"a b c  d"},
        {"of_just_the_length", {std::u16string(80, u'x'), page, last_day}, std::u16string(80, u'x')},
        {"too_long", {std::u16string(79, u'x') + u"\U0001F600", page, last_day}, std::u16string(79, u'x') + u"…"},
    }),
    support::name_of_row);

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
