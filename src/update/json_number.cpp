#include "update/json_number.h"

#include "serialisation/real_text.h"

#include <algorithm>
#include <boost/spirit/home/x3.hpp>
#include <limits>

namespace girder::json {
namespace {

namespace x3 = boost::spirit::x3;

constexpr bool is_digit(char unit)
{
    return unit >= '0' && unit <= '9';
}

/// Takes the digits off the front. \return whether there were any
bool take_digits(std::string_view& text) noexcept
{
    const auto* const end = std::ranges::find_if_not(text, is_digit);
    const auto count = static_cast<std::size_t>(end - text.begin());
    text.remove_prefix(count);
    return count > 0;
}

bool take(std::string_view& text, char unit) noexcept
{
    if (text.empty() || (text.front() | 0x20) != (unit | 0x20))
        return false;
    text.remove_prefix(1);
    return true;
}

bool equals_in_any_case(std::string_view text, std::string_view lower) noexcept
{
    return std::ranges::equal(text, lower, {}, [](char unit) { return static_cast<char>(unit | 0x20); });
}

template <typename Value, typename Parser>
std::optional<Value> parse_whole(std::string_view text, const Parser& parser)
{
    const char* at = text.data();
    const char* const end = at + text.size();
    Value value{};
    if (!x3::parse(at, end, parser, value) || at != end)
        return std::nullopt;
    return value;
}

} // namespace

bool is_number(std::string_view text) noexcept
{
    if (!text.empty() && text.front() == '-')
        text.remove_prefix(1);
    if (equals_in_any_case(text, "nan") || equals_in_any_case(text, "inf") || equals_in_any_case(text, "infinity"))
        return true;
    bool digits = take_digits(text);
    if (!text.empty() && text.front() == '.') {
        text.remove_prefix(1);
        digits = take_digits(text) || digits;
    }
    if (digits && take(text, 'e')) {
        if (!text.empty() && (text.front() == '+' || text.front() == '-'))
            text.remove_prefix(1);
        digits = take_digits(text);
    }
    return digits && text.empty();
}

template <>
std::optional<std::uint64_t> parse_integer(std::string_view text)
{
    return parse_whole<std::uint64_t>(text, x3::uint_parser<std::uint64_t>());
}

template <>
std::optional<std::int64_t> parse_integer(std::string_view text)
{
    return parse_whole<std::int64_t>(text, x3::int_parser<std::int64_t>());
}

std::optional<std::uint64_t> parse_hexadecimal(std::string_view digits)
{
    return parse_whole<std::uint64_t>(digits, x3::uint_parser<std::uint64_t, 16>());
}

template <typename Real>
std::optional<Real> parse_real(std::string_view text)
{
    // The parser of X3 computes in the type that it reads into, which is exact while the digits and the power of ten
    // that divides them are.
    const bool has_exponent = text.find_first_of("eE") != std::string_view::npos;
    if (!has_exponent && std::ranges::count_if(text, is_digit) <= std::numeric_limits<Real>::digits10)
        return parse_whole<Real>(text, x3::real_parser<Real>());
    return nsm::parse_real<Real>(text);
}

template std::optional<double> parse_real(std::string_view text);
template std::optional<float> parse_real(std::string_view text);

} // namespace girder::json
