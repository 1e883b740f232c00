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
    ASSERT_EQ(parse_real<Real>(text), value) << girder::to_utf8(text);
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

} // namespace
