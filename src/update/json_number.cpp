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

/// \return behind the digits that begin there
const char* after_digits(const char* at, const char* end) noexcept
{
    while (at != end && is_digit(*at))
        ++at;
    return at;
}

/// \return behind the word in any case, or nullptr when another text begins there
const char* after_word(const char* at, const char* end, std::string_view lower) noexcept
{
    const std::string_view text = std::string_view(at, end).substr(0, lower.size());
    const bool equal = std::ranges::equal(text, lower, {}, [](char unit) { return static_cast<char>(unit | 0x20); });
    return equal ? at + lower.size() : nullptr;
}

/// \return behind the power of ten that begins there, with at least one digit, or nullptr
const char* after_exponent(const char* at, const char* end) noexcept
{
    ++at;
    if (at != end && (*at == '+' || *at == '-'))
        ++at;
    const char* const after = after_digits(at, end);
    return after != at ? after : nullptr;
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

const char* after_number(const char* at, const char* end) noexcept
{
    if (at != end && *at == '-')
        ++at;
    const char* after = after_digits(at, end);
    std::ptrdiff_t digits = after - at;
    if (after != end && *after == '.') {
        const char* const fraction = after + 1;
        after = after_digits(fraction, end);
        digits += after - fraction;
    }
    if (digits > 0)
        return after != end && (*after | 0x20) == 'e' ? after_exponent(after, end) : after;
    for (const std::string_view word : {"infinity", "inf", "nan"})
        if (const char* const behind = after_word(at, end, word))
            return behind;
    return nullptr;
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

std::optional<std::uint64_t> take_integer(const char*& at, const char* end)
{
    std::uint64_t value = 0;
    if (!x3::parse(at, end, x3::uint_parser<std::uint64_t>(), value))
        return std::nullopt;
    return value;
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
