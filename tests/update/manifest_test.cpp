#include "serialisation/load_exception.h"
#include "update/manifest.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using namespace tidelink;

constexpr std::string_view digest_text = "00112233445566778899aAbBcCdDeEfF00112233445566778899aabbccddeeff";

std::string whole_manifest()
{
    return R"({"LanguagePacks":[{"Locale":"de","Name":"Deutsch","Unknown":[{}],"Version":3,"ClientVersion":701001604,
        "Credits":[{"Name":"A. B.","EMail":"a@b.example"},{"Name":"C","EMail":""}]}],
        "Version":701011700, "Promo":{"Title":"[[[b New]]]","Url":"https://vendor.example/","ExpiresOn":"2025-06-25T23:59:59"},
        "Installer":{"Url":"/setup.exe","Sha256":")" +
           std::string(digest_text) + R"(","Size":268435456},"Version":1})";
}

TEST(manifest_test, every_member_in_any_order)
{
    const Manifest manifest = read_manifest(whole_manifest());
    EXPECT_EQ(manifest.version, 701011700U) << "of two members with one name the first";
    // 2025-06-25 is 155,038 days after 1601-01-01.
    EXPECT_EQ(manifest.promo, (Promo{u"[[[b New]]]", u"https://vendor.example/", {155'038}}));
    EXPECT_EQ(manifest.language_packs,
              (std::vector{OfferedPack{u"Deutsch", u"de", 3, 701001604, {{u"A. B.", u"a@b.example"}, {u"C", u""}}}}));
    sha256_digest digest;
    for (unsigned i = 0; i < digest.bytes.size(); ++i)
        digest.bytes[i] = static_cast<std::byte>(i % 16 * 0x11);
    EXPECT_EQ(manifest.installer, (Installer{u"/setup.exe", digest, 268435456}));
}

TEST(manifest_test, only_the_version_is_required)
{
    const Manifest manifest = read_manifest(R"({"Version":1,"Promo":null})");
    EXPECT_EQ(manifest.version, 1U);
    EXPECT_FALSE(manifest.promo || manifest.language_packs || manifest.installer);
    EXPECT_EQ(read_manifest(R"({"Version":1)").version, 1U) << "the end of the text ends an object";
    EXPECT_EQ(read_manifest(R"({"Version":0,"LanguagePacks":[]})").language_packs, std::vector<OfferedPack>{});
}

TEST(manifest_test, what_cannot_be_read_is_refused_with_the_reason)
{
    const auto with_digest = [](const std::string& digest) {
        return R"({"Version":1,"Installer":{"Url":"","Size":1,"Sha256":")" + digest + "\"}}";
    };
    const std::pair<std::string, std::string_view> rows[] = {
        {"", "Object expected"},
        {"[1]", "Object expected"},
        {"<html>", "bad json format (1,0)"},
        {"{\"Version\":1}{}", "bad json format (1,13)"},
        {"{\"version\":1}", "Number expected"},
        {R"({"Version":"1"})", "Number expected"},
        {R"({"Version":4294967296})", "Number expected"},
        {R"({"Version":1,"Promo":"x"})", "Object expected"},
        {R"({"Version":1,"Promo":{"Title":"x","ExpiresOn":"2025-06-25T00:00:00"}})", "String expected"},
        {R"({"Version":1,"Promo":{"Title":"x","Url":"x"}})", "Date expected"},
        {R"({"Version":1,"Promo":{"Title":"x","Url":"x","ExpiresOn":"2025-06-25"}})", "Date expected"},
        {R"({"Version":1,"LanguagePacks":{}})", "Array expected"},
        {R"({"Version":1,"LanguagePacks":["de"]})", "Object expected"},
        {R"({"Version":1,"LanguagePacks":[{"Name":"x","Locale":"x","Version":1,"ClientVersion":1}]})",
         "Array expected"},
        {with_digest("00"), "String expected"},
        {with_digest(std::string(digest_text) + "00"), "String expected"},
        {with_digest(std::string(63, '0') + "g"), "String expected"},
    };
    for (const auto& [text, reason] : rows)
        EXPECT_THAT([&] { read_manifest(text); },
                    testing::ThrowsMessage<girder::nsm::details::load_exception>(std::string(reason)));
}

TEST(manifest_test, an_address_of_the_vendor_stays_on_https)
{
    constexpr std::u16string_view host = u"https://updates.example";
    EXPECT_EQ(address_below(host, u"/a/b.exe?c"), u"https://updates.example/a/b.exe?c");
    EXPECT_EQ(address_below(host, u"HTTPS://other.example/b.exe"), u"HTTPS://other.example/b.exe");
    // Some of these would continue the host's name, or make it a user's.
    for (const std::u16string_view url :
         {u"http://other.example/b.exe", u"file:///c:/b.exe", u"", u".other.example/b.exe", u"@other.example/b.exe",
          u"//other.example/b.exe", u"/\\other.example/b.exe"})
        EXPECT_EQ(address_below(host, url), std::nullopt) << std::string(url.begin(), url.end());
}

} // namespace
