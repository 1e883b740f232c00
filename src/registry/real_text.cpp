#include "registry/real_text.h"

#include "base/utf.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string_view>

namespace girder::registry_ex {
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

/// C runtimes write exponents of two or three digits: 1e+022.
std::string without_leading_exponent_zeros(std::string text)
{
    const std::size_t exponent = text.find('e');
    if (exponent == std::string::npos)
        return text;
    const std::size_t digits = exponent + 2;
    const std::size_t first = std::min(text.find_first_not_of('0', digits), text.size() - 1);
    return text.erase(digits, first - digits);
}

// std::to_chars would bring 170 KiB of tables along; some attempts at a text that is rarely written cost nothing.
template <typename Real>
std::u16string shortest_text(Real value)
{
    if (std::isnan(value))
        return u"nan";
    if (std::isinf(value))
        return value < 0 ? u"-inf" : u"inf";
    std::string text;
    for (int digits = 1; digits <= std::numeric_limits<Real>::max_digits10; ++digits) {
        char buffer[32];
        const int length = std::snprintf(buffer, sizeof buffer, "%.*g", digits, static_cast<double>(value));
        text = without_leading_exponent_zeros({buffer, static_cast<std::size_t>(length)});
        if (parse<Real>(text) == value)
            break;
    }
    return to_utf16(text);
}

} // namespace

std::u16string to_text(double value)
{
    return shortest_text(value);
}

std::u16string to_text(float value)
{
    return shortest_text(value);
}

template <typename Real>
std::optional<Real> parse_real(const std::u16string& text)
{
    return parse<Real>(to_utf8(text));
}

template std::optional<double> parse_real(const std::u16string& text);
template std::optional<float> parse_real(const std::u16string& text);

} // namespace girder::registry_ex
