#pragma once

#include "format/compiled_format.h"
#include "format/parser.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace fmtkit {
namespace details {

/// The text of a literal as a template argument.
template <typename Char, std::size_t Size>
struct fixed_text {
    // NOLINTNEXTLINE(google-explicit-constructor): made by the compiler from the literal
    consteval fixed_text(const Char (&literal)[Size]) { std::copy_n(literal, Size, units); }

    constexpr std::basic_string_view<Char> view() const noexcept { return {units, Size - 1}; }

    using character = Char;
    Char units[Size];
};

template <fixed_text Text>
consteval std::size_t item_count()
{
    std::size_t count = 0;
    parse_format(Text.view(), [&count](const FormatItem&) { ++count; });
    return count;
}

template <fixed_text Text>
consteval auto parse_items()
{
    std::array<FormatItem, item_count<Text>()> items{};
    std::size_t next = 0;
    parse_format(Text.view(), [&](const FormatItem& item) { items[next++] = item; });
    return items;
}

} // namespace details

/// A format compiled at build time: a type of its own, whose constant tables are in read-only memory.
template <details::fixed_text Text>
struct literal_format {
    using character = typename decltype(Text)::character;

    static constexpr auto source = Text;
    static constexpr auto table = details::parse_items<Text>();

    static constexpr std::basic_string_view<character> text() noexcept { return source.view(); }
    static constexpr std::span<const FormatItem> items() noexcept { return table; }
    // NOLINTNEXTLINE(google-explicit-constructor): a format is what every function of this library takes
    constexpr operator basic_format_view<character>() const noexcept { return {text(), items()}; }
};

inline namespace literals {

/// u"Error {0}"_fmt, also narrow: the format is parsed while compiling; one that is malformed does not compile.
template <details::fixed_text Text>
consteval literal_format<Text> operator""_fmt()
{
    return {};
}

} // namespace literals
} // namespace fmtkit
