#include "update/json_reader.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <utility>

namespace {

using namespace girder;
using girder::nsm::details::load_exception;
using json::reader;
using testing::ElementsAre;

/// Told in UTF-16, too.
auto refused_with(const std::string& text)
{
    return testing::Throws<load_exception>(
        testing::AllOf(testing::Property(&load_exception::what, testing::StrEq(text)),
                       testing::Property(&load_exception::message, std::u16string(text.begin(), text.end()))));
}

void read_everything(const reader& value)
{
    const std::uint32_t kinds = value.kinds();
    if ((kinds & json::object_kind) != 0)
        value.visit_members([](nsm::value_name, const nsm::value_reader& member) {
            read_everything(dynamic_cast<const reader&>(member));
        });
    else if ((kinds & json::string_kind) != 0)
        value.as_string();
    else if ((kinds & json::array_or_blob_kind) != 0)
        value.visit_elements(
            [](const nsm::value_reader& element) { read_everything(dynamic_cast<const reader&>(element)); });
    else if ((kinds & json::number_kind) != 0)
        value.as_double();
    else if ((kinds & json::boolean_kind) != 0)
        value.as_boolean();
}

TEST(json_reader_test, kinds_follow_from_the_first_characters)
{
    const std::pair<std::string_view, std::uint32_t> rows[] = {
        {"", 0},          {" null", 0},     {"]", 0},      {"false", 0x081},    {"t", 0x081},
        {"7", 0x082},     {"-inf", 0x082},  {".5", 0x082}, {"\"0x1F\"", 0x082}, {"\"0X1F\"", 0x082},
        {"\"{\"", 0x1AC}, {"\"0\"", 0x18C}, {"[", 0x088},  {"{", 0x090},        {" \t\r\n, ,true", 0x081},
    };
    for (const auto& [text, kinds] : rows)
        EXPECT_EQ(reader(text).kinds(), kinds) << text;
}

TEST(json_reader_test, malformed_text_is_refused_at_its_place_whether_read_or_skipped)
{
    const std::pair<std::string_view, std::string_view> rows[] = {
        {"[1,2,?]", "(1,5)"}, {"[\n\n ?]", "(3,2)"},   {"[\f1]", "(1,1)"},    {"[1\v]", "(1,2)"},
        {"nul", "(1,0)"},     {"[nil]", "(1,1)"},      {"[trye]", "(1,1)"},   {"[fals]", "(1,1)"},
        {"[inf]", "(1,1)"},   {"[+1]", "(1,1)"},       {"[-]", "(1,1)"},      {"[-.e1]", "(1,1)"},
        {"[1.2.3]", "(1,1)"}, {"[1e+]", "(1,1)"},      {"[0x1F]", "(1,1)"},   {"[\"abc]", "(1,1)"},
        {"\"abc\\", "(1,0)"}, {"[\"", "(1,1)"},        {"{a:1}", "(1,1)"},    {"{\"a\" 1}", "(1,5)"},
        {"{\"a\"}", "(1,4)"}, {"{\"a\",:1}", "(1,4)"}, {"{\"a\":}", "(1,5)"}, {"{\"a\":", "(1,5)"},
    };
    for (const auto& [text, where] : rows) {
        const reader document(text);
        const auto refused = refused_with("bad json format " + std::string(where));
        EXPECT_THAT([&] { read_everything(document); }, refused) << text;
        EXPECT_THAT([&] { document.expect_end(); }, refused) << text;
    }
}

TEST(json_reader_test, ends_of_containers_are_alike)
{
    for (const std::string_view text : {"[1,[2],3]", "[1,[2},3}", "[1 [2} 3", "[,1,,[2]3,]"}) {
        const reader document(text);
        std::vector<std::uint64_t> numbers;
        document.visit_elements([&](const nsm::value_reader& element) {
            if (numbers.size() == 1)
                element.visit_elements([&](const nsm::value_reader& inner) { numbers.push_back(inner.as_unsigned()); });
            else
                numbers.push_back(element.as_unsigned());
        });
        EXPECT_THAT(numbers, ElementsAre(1, 2, 3)) << text;
        EXPECT_NO_THROW(document.expect_end()) << text;
    }
    EXPECT_THAT([] { reader("{} 1").expect_end(); }, refused_with("bad json format (1,3)"));
    EXPECT_THAT([] { reader("]").expect_end(); }, refused_with("bad json format (1,0)"));
}

TEST(json_reader_test, nesting_ends_at_64)
{
    for (const std::string_view opening : {"[", "{\"a\":"}) {
        std::string text;
        for (int level = 0; level < 64; ++level)
            text += opening;
        const std::string deepest = text + (opening == "[" ? "" : "1");
        EXPECT_NO_THROW(read_everything(reader(deepest)));
        EXPECT_NO_THROW(reader(deepest).expect_end());
        const std::string deeper = text + "[";
        const auto refused =
            refused_with("bad json format (1," + std::to_string(64 * opening.size()) + "): nested too deep");
        EXPECT_THAT([&] { read_everything(reader(deeper)); }, refused);
        EXPECT_THAT([&] { reader(deeper).expect_end(); }, refused);
    }
}

TEST(json_reader_test, members_are_visited_in_order_and_skipped_exactly)
{
    const reader document(
        R"({"a":{"x":["]",{"}":"\\"}],"y":-1.5e3},"b":"\"{[","c":[[],{}],"d\u0064\"":true, "a" : 2})");
    std::vector<std::string> names;
    document.visit_members([&](nsm::value_name name, const nsm::value_reader&) { names.emplace_back(name.text); });
    EXPECT_THAT(names, ElementsAre("a", "b", "c", "dd\"", "a"));

    constexpr std::string_view wanted[] = {"b", "dd\"", "x", "a"};
    std::vector<std::size_t> found;
    document.visit_named(wanted, [&](std::size_t index, const nsm::value_reader&) { found.push_back(index); });
    EXPECT_THAT(found, ElementsAre(3, 0, 1, 3));

    EXPECT_EQ(document.find("b").as_string(), u"\"{[");
    EXPECT_TRUE(document.find("dd\"").as_boolean());
    EXPECT_EQ(document.find("a").find("y").as_double(), -1500);
    EXPECT_EQ(document.find("a").kinds(), 0x090U) << "of two members with one name the first";
    EXPECT_EQ(document.find("A").kinds(), 0U);
}

TEST(json_reader_test, a_value_of_another_kind_or_range_is_refused_with_what_was_expected)
{
    constexpr auto as_object = [](const reader& value) { value.visit_members({}); };
    constexpr auto as_array = [](const reader& value) { value.visit_elements({}); };
    const struct {
        std::function<void(const reader&)> read;
        std::string error;
        std::vector<std::string_view> texts;
    } rows[] = {
        {&reader::as_string, "String expected", {"1", "null", "\"0x1F\""}},
        {as_object, "Object expected", {"", "[]"}},
        {as_array, "Array expected", {"{}", "\"\""}},
        {&reader::as_unsigned,
         "Number expected",
         {"\"1\"", "1.5", "-1", "18446744073709551616", "\"0x10000000000000000\"", "\"0x\""}},
        {&reader::as_signed, "Number expected", {"1e2", "9223372036854775808", "\"0x8000000000000000\""}},
        {&reader::as_double, "Number expected", {"\"0x1G\"", "1e400"}},
        {&reader::as_float, "Number expected", {"1e39"}},
        {&reader::as_boolean, "Boolean expected", {"1", "\"true\""}},
        {&reader::as_date, "Date expected", {"1", "\"2025-06-31T00:00:00\""}},
        {&reader::as_guid, "String expected", {"\"CLSID\"", "\"{35B11BAB}\""}},
        {&reader::as_binary, "String expected", {"[1]", "\"QUJDR\"", "\"QQ==QUI=\"", "\"QUJD=\"", "\"-_-_\""}},
        {&reader::as_string, "bad json format (1,2)", {R"("a\x41")"}},
        {&reader::as_string, "bad json format (1,1)", {R"("\u12")", R"("\u12G4")"}},
    };
    for (const auto& [read, error, texts] : rows)
        for (const std::string_view text : texts)
            EXPECT_THAT([&] { read(reader(text)); }, refused_with(error)) << text;
}

TEST(json_reader_test, texts_are_resolved)
{
    const std::pair<std::string_view, std::u16string_view> rows[] = {
        {R"("")", u""},
        {R"("0123456789abcdef" )", u"0123456789abcdef"},
        {R"("the quick brown fox jumps over the dog")", u"the quick brown fox jumps over the dog"},
        {"\"0123456789abc\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80\"", u"0123456789abc\u00E9 \u20AC \U0001F600"},
        {"\"\xC3(\xFF\"", u"\uFFFD(\uFFFD"},
        {R"("\"\\\/\b\f\n\r\t")", u"\"\\/\b\f\n\r\t"},
        {R"("\u00e9\u20AC\u0000x")", {u"\u00E9\u20AC\0x", 4}},
        {R"("\uD83D\uDE00")", u"\U0001F600"},
        {R"("\uD83D-\uDE00\uD83D\n\uD83D\uD83D\uDE00\uD83D")", u"\uFFFD-\uFFFD\uFFFD\n\uFFFD\U0001F600\uFFFD"},
        {"\"\x01\n\"", u"\x01\n"},
    };
    for (const auto& [text, resolved] : rows)
        EXPECT_EQ(reader(text).as_string(), resolved) << text;
}

TEST(json_reader_test, numbers)
{
    EXPECT_EQ(reader("\"0x1F\"").as_unsigned(), 31U);
    EXPECT_EQ(reader("\"0XfFfFfFfFfFfFfFfF\"").as_unsigned(), UINT64_MAX);
    EXPECT_EQ(reader("\"0x10\"").as_double(), 16);
    EXPECT_EQ(reader("18446744073709551615").as_unsigned(), UINT64_MAX);
    EXPECT_EQ(reader("-9223372036854775808").as_signed(), INT64_MIN);
    EXPECT_EQ(reader("007").as_signed(), 7);
    EXPECT_EQ(reader(".5").as_double(), 0.5);
    EXPECT_EQ(reader("-5.").as_float(), -5.0F);
    EXPECT_EQ(reader("6.02214076E+23").as_double(), 6.02214076e23);
    EXPECT_EQ(reader("1e-300").as_double(), 1e-300);
    EXPECT_EQ(reader("1211111111111111193").as_double(), 1211111111111111193.0);
    EXPECT_EQ(reader("16777217.0000001").as_float(), 16777218.0F);
    EXPECT_EQ(reader("999999.9999").as_float(), 1e6F);
    EXPECT_EQ(reader("-iNf").as_double(), -HUGE_VAL);
    EXPECT_EQ(reader("-Infinity").as_float(), -HUGE_VALF);
    EXPECT_TRUE(std::isnan(reader("-NaN").as_double()));
}

TEST(json_reader_test, dates_guids_and_bytes)
{
    const file_time noon{unix_epoch_ticks + 1'750'852'800 * ticks_per_second};
    EXPECT_EQ(reader("\"2025-06-25T12:00:00\"").as_date(), noon);
    EXPECT_EQ(reader("\"2025-06-25T14:00:00+0200\"").as_date(), noon);
    EXPECT_EQ(reader("\"{00000001-0002-0003-0405-060708090A0b}\"").as_guid(),
              (nsm::guid{1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}}));
    for (const std::string_view text : {"\"QUJDRA==\"", "\"QUJDRA\""})
        EXPECT_EQ(reader(text).as_binary().size(), 4U);
    EXPECT_EQ(reader("\"+/8=\"").as_binary(), (std::vector{std::byte{0xFB}, std::byte{0xFF}}));
}

} // namespace
