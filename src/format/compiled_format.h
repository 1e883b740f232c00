#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace fmtkit {

/// What an item of a compiled format is and how it writes its argument. The values are fixed.
enum item_flag : std::uint32_t {
    flag_ellipsis = 0x00001,        ///< e: a cut is marked with U+2026
    flag_plus = 0x00002,            ///< +: non-negative signed numbers get a "+"
    flag_lower_hex = 0x00004,       ///< x after b16
    flag_character = 0x00008,       ///< c: the number is a character code
    flag_grouped = 0x00010,         ///< l: decimal digits in groups of three
    flag_time = 0x00020,            ///< t(...): begin and end delimit the pattern
    flag_hex_prefix = 0x00040,      ///< 0 right after b: "0x"
    flag_literal = 0x00080,         ///< text of the format itself
    flag_condition_begin = 0x00100, ///< ?<
    flag_condition_end = 0x00200,   ///< ?>
    flag_condition_else = 0x00400,  ///< ?|
    flag_conditional = 0x00800,     ///< any of the three: evaluated even where nothing is written
    flag_hex_padded = 0x01000,      ///< p after b16: 8 or 16 digits
    flag_n = 0x02000,               ///< n: recorded only
    flag_s = 0x04000,               ///< s: recorded only
    flag_sa = 0x08000,              ///< sa: recorded only
    flag_unsigned = 0x10000,        ///< u
    flag_escaped = 0x20000,         ///< literal in which the character after each "{" is left out
    flag_default_hex = 0x40000,     ///< b16 without a case: upper case
};

enum alignment : std::uint16_t { align_left = 0, align_centre = 1, align_right = 2 };

/// One item of a compiled format. Offsets and widths count units of the format's character type.
struct FormatItem {
    std::int32_t begin = 0; ///< of a literal its text, of a time item its pattern, in the format text
    std::int32_t end = 0;
    std::uint32_t flags = 0;
    std::uint16_t argIndex = 0;
    std::uint16_t align = align_left;
    std::uint16_t minWidth = 0; ///< 0: none
    std::uint16_t maxWidth = 0; ///< 0: none
    std::uint16_t precision = 0;
    std::uint16_t fill = u' ';
    std::uint32_t base = 10;

    bool operator==(const FormatItem&) const = default;
};

/// A compiled format as the renderer takes it: views of the text and of the items.
template <typename Char>
struct basic_format_view {
    std::basic_string_view<Char> text;
    std::span<const FormatItem> items;
};

/// A format compiled at run time. Owns its items and refers to the format text, which has to outlive it. Read-only once
/// made; any thread may render it.
template <typename Char>
class basic_compiled_format {
public:
    basic_compiled_format(std::basic_string_view<Char> text, std::vector<FormatItem> items) noexcept
        : text_(text), items_(std::move(items))
    {}

    std::basic_string_view<Char> text() const noexcept { return text_; }
    std::span<const FormatItem> items() const noexcept { return items_; }
    // NOLINTNEXTLINE(google-explicit-constructor): a format is what every function of this library takes
    operator basic_format_view<Char>() const noexcept { return {text_, items_}; }

private:
    std::basic_string_view<Char> text_;
    std::vector<FormatItem> items_;
};

using CompiledFormat = basic_compiled_format<char16_t>;
using NarrowCompiledFormat = basic_compiled_format<char>;

} // namespace fmtkit
