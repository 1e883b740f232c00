#include "serialisation/real_text.h"

#include "base/utf.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string_view>
#include <system_error>

namespace girder::nsm {
namespace {

template <typename Real>
std::optional<Real> parse(std::string_view text)
{
    Real value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

/// digits[0].digits[1]digits[2]... times 10 to the exponent.
struct decimal {
    std::string digits;
    int exponent = 0;
};

decimal rounded(double magnitude, int digit_count)
{
    char buffer[32];
    const int length = std::snprintf(buffer, sizeof buffer, "%.*e", digit_count - 1, magnitude);
    const std::string_view text(buffer, static_cast<std::size_t>(length));
    const std::size_t e = text.find('e');
    decimal number{.digits = std::string(text.substr(0, e)),
                   .exponent = static_cast<int>(std::strtol(&buffer[e + 1], nullptr, 10))};
    if (digit_count > 1)
        number.digits.erase(1, 1);
    return number;
}

/// The next larger number of as many digits.
decimal next_larger(decimal number)
{
    std::size_t last = number.digits.find_last_not_of('9');
    if (last == std::string::npos) {
        ++number.exponent;
        number.digits.insert(0, 1, '0');
        number.digits.pop_back();
        last = 0;
    }
    ++number.digits[last];
    std::fill(number.digits.begin() + static_cast<std::ptrdiff_t>(last) + 1, number.digits.end(), '0');
    return number;
}

std::string without_exponent(const decimal& number)
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

std::string with_exponent(const decimal& number)
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

std::string text_of(const decimal& number)
{
    const std::string plain = without_exponent(number);
    const std::string scientific = with_exponent(number);
    return plain.size() <= scientific.size() ? plain : scientific;
}

using read_back_check = bool (*)(const std::string& text, double value);

template <typename Real>
bool reads_back_as(const std::string& text, double value)
{
    return parse<Real>(text) == static_cast<Real>(value);
}

// std::to_chars would bring 170 KiB of tables along; some attempts at a text that is rarely written cost nothing.
std::string shortest_text(double magnitude, read_back_check reads_back)
{
    if (std::isnan(magnitude))
        return "nan";
    if (std::isinf(magnitude))
        return "inf";
    for (int digits = 1;; ++digits) {
        const decimal nearest = rounded(magnitude, digits);
        std::string text = text_of(nearest);
        if (digits == std::numeric_limits<double>::max_digits10 || reads_back(text, magnitude))
            return text;
        // Above a power of two, twice as many decimals read back as it than below: the nearest need not be among them.
        text = text_of(next_larger(nearest));
        if (reads_back(text, magnitude))
            return text;
    }
}

std::u16string signed_text(double value, read_back_check reads_back)
{
    const bool has_sign = std::signbit(value) && !std::isnan(value);
    return to_utf16((has_sign ? "-" : "") + shortest_text(std::abs(value), reads_back));
}

} // namespace

std::u16string to_text(double value)
{
    return signed_text(value, &reads_back_as<double>);
}

std::u16string to_text(float value)
{
    return signed_text(value, &reads_back_as<float>);
}

template <typename Real>
std::optional<Real> parse_real(const std::u16string& text)
{
    return parse<Real>(to_utf8(text));
}

template std::optional<double> parse_real(const std::u16string& text);
template std::optional<float> parse_real(const std::u16string& text);

} // namespace girder::nsm
