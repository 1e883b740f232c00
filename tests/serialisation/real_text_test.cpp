#include "base/utf.h"
#include "serialisation/real_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>

namespace {

using girder::nsm::parse_real;
using girder::nsm::to_text;

TEST(real_text_test, is_written_like_this)
{
    EXPECT_EQ(to_text(0.1F), u"0.1");
    EXPECT_EQ(to_text(-0.0), u"-0");
    EXPECT_EQ(to_text(1000.0), u"1000");
    EXPECT_EQ(to_text(1e22), u"1e+22");
    EXPECT_EQ(to_text(-std::numeric_limits<double>::infinity()), u"-inf");
    EXPECT_EQ(to_text(std::numeric_limits<double>::quiet_NaN()), u"nan");
}

/// The standard library's shortest text is the oracle for the length; where several texts are equally short, any does.
template <typename Real>
void expect_shortest(Real value)
{
    char buffer[64];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
    ASSERT_EQ(error, std::errc());
    const std::u16string text = to_text(value);
    ASSERT_EQ(parse_real<Real>(girder::to_utf8(text)), value) << girder::to_utf8(text);
    ASSERT_EQ(girder::to_utf8(text).size(), static_cast<std::size_t>(end - buffer))
        << girder::to_utf8(text) << " for " << std::string(buffer, end);
}

TEST(real_text_test, is_the_shortest_that_reads_back)
{
    std::mt19937_64 random(7);
    for (int i = 0; i < 500; ++i) {
        const std::uint64_t bits = random();
        if (const auto value = std::bit_cast<double>(bits); std::isfinite(value))
            expect_shortest(value);
        if (const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(bits)); std::isfinite(value))
            expect_shortest(value);
        expect_shortest(static_cast<double>(bits >> (bits % 64)));
        expect_shortest(static_cast<double>(bits % 100'000) / 1000);
    }
}

TEST(real_text_test, powers_of_two_have_uneven_neighbours)
{
    for (int exponent = -1074; exponent <= 1023; ++exponent)
        expect_shortest(std::ldexp(1.0, exponent));
    for (int exponent = -149; exponent <= 127; ++exponent)
        expect_shortest(std::ldexp(1.0F, exponent));
}

/// As the standard library does.
template <typename Real>
void expect_read_as_by_library(const std::string& text)
{
    Real value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool is_read = error == std::errc() && end == text.data() + text.size();
    EXPECT_EQ(parse_real<Real>(text), is_read ? std::optional(value) : std::nullopt) << text;
}

TEST(real_text_test, any_decimal_is_read_as_the_nearest_number)
{
    std::mt19937_64 random(11);
    for (int i = 0; i < 3000; ++i) {
        std::string text = std::to_string(random() >> (random() % 64));
        text.insert(random() % (text.size() + 1), 1, '.');
        text += 'e' + std::to_string(static_cast<int>(random() % 700) - 350);
        expect_read_as_by_library<double>(text);
        expect_read_as_by_library<float>(text);
    }
}

TEST(real_text_test, borders_between_numbers_and_refused_texts)
{
    const std::string half_way = "9007199254740993."; // 2^53 + 1
    for (const char* const behind : {"0", "1"})
        expect_read_as_by_library<double>(half_way + std::string(9000, '0') + behind);
    for (const char* const text :
         {"9007199254740993", "2.4703282292062327e-324", "2.4703282292062328e-324", "4.9e-324",
          "1.7976931348623158e308", "1.7976931348623159e308", "1e99999999999", "1e-99999999999", "0e99999999999"})
        expect_read_as_by_library<double>(text);
    for (const char* const text :
         {"0.0000", ".", "1e", "1e+", "1.e5", ".5", "+1", "1e+-5", " 1", "1 ", "0x10", "-", "--1", "", "-.5E-3"})
        expect_read_as_by_library<double>(text);
}

} // namespace
