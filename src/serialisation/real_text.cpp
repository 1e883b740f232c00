#include "serialisation/real_text.h"

#include "base/utf.h"
#include "serialisation/decimal_number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <system_error>

namespace girder::nsm {
namespace {

std::string without_exponent(const decimal_number& number)
{
    if (number.exponent < 0)
        return "0." + std::string(static_cast<std::size_t>(-number.exponent - 1), '0') + number.digits;
    std::string text = number.digits;
    const auto whole_digits = static_cast<std::size_t>(number.exponent) + 1;
    if (text.size() <= whole_digits)
        text.append(whole_digits - text.size(), '0');
    else
        text.insert(whole_digits, 1, '.');
    return text;
}

std::string with_exponent(const decimal_number& number)
{
    std::string text = number.digits;
    if (text.size() > 1)
        text.insert(1, 1, '.');
    const int magnitude = std::abs(number.exponent);
    text += number.exponent < 0 ? "e-" : "e+";
    if (magnitude < 10)
        text += '0';
    return text + std::to_string(magnitude);
}

std::string text_of(double magnitude, const real_format& format)
{
    if (std::isnan(magnitude))
        return "nan";
    if (std::isinf(magnitude))
        return "inf";
    if (magnitude == 0)
        return "0";
    const decimal_number number = shortest_decimal(magnitude, format);
    const std::string plain = without_exponent(number);
    const std::string scientific = with_exponent(number);
    return plain.size() <= scientific.size() ? plain : scientific;
}

std::u16string signed_text(double value, const real_format& format)
{
    const bool has_sign = std::signbit(value) && !std::isnan(value);
    return to_utf16((has_sign ? "-" : "") + text_of(std::abs(value), format));
}

/// Takes the decimal digits off the front of a text.
std::string_view take_digits(std::string_view& text)
{
    const std::string_view digits = text.substr(0, text.find_first_not_of("0123456789"));
    text.remove_prefix(digits.size());
    return digits;
}

/// Empty when the text is no exponent, which an empty text is. \return 0 for an empty text
std::optional<int> parse_exponent(std::string_view text)
{
    if (text.empty())
        return 0;
    if (text.front() != 'e' && text.front() != 'E')
        return std::nullopt;
    text.remove_prefix(1);
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    int exponent = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), exponent);
    if (error == std::errc::invalid_argument || end != text.data() + text.size())
        return std::nullopt;
    // Beyond the range of int it is beyond that of any number, too.
    constexpr int beyond = std::numeric_limits<int>::max() / 2;
    return error == std::errc() ? std::clamp(exponent, -beyond, beyond) : text.front() == '-' ? -beyond : beyond;
}

std::optional<double> parse_magnitude(std::string_view text, const real_format& format)
{
    if (text == "inf")
        return std::numeric_limits<double>::infinity();
    if (text == "nan")
        return std::numeric_limits<double>::quiet_NaN();
    std::string digits(take_digits(text));
    std::size_t decimals = 0;
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        const std::string_view behind_point = take_digits(text);
        digits += behind_point;
        decimals = behind_point.size();
    }
    const std::optional<int> exponent = parse_exponent(text);
    if (digits.empty() || !exponent)
        return std::nullopt;
    return nearest_real(digits, *exponent - static_cast<long long>(decimals), format);
}

} // namespace

std::u16string to_text(double value)
{
    return signed_text(value, format_of<double>);
}

std::u16string to_text(float value)
{
    return signed_text(value, format_of<float>);
}

template <typename Real>
std::optional<Real> parse_real(std::string_view text)
{
    const bool negative = text.starts_with('-');
    const std::optional<double> magnitude = parse_magnitude(text.substr(negative ? 1 : 0), format_of<Real>);
    if (!magnitude)
        return std::nullopt;
    return static_cast<Real>(negative ? -*magnitude : *magnitude);
}

template std::optional<double> parse_real(std::string_view text);
template std::optional<float> parse_real(std::string_view text);

} // namespace girder::nsm
