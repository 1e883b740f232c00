#pragma once

#include "format/compiled_format.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace fmtkit::details {

// The ways in which a format text can be malformed. None of them is constexpr: for a literal, the compiler's message
// names the one that it cannot call. At run time each throws bad_extended_format_string.
[[noreturn]] void format_text_ends_inside_a_specifier();
[[noreturn]] void format_has_an_unknown_specifier_letter();
[[noreturn]] void format_condition_is_none_of_less_bar_greater();
[[noreturn]] void format_time_has_no_opening_parenthesis();
[[noreturn]] void format_time_pattern_has_a_closing_brace();
[[noreturn]] void format_fill_is_more_than_one_unit();

/// The one parser of the format language, for formats known at build time and for those that come at run time.
///
/// \tparam Sink  called with each FormatItem in order
template <typename Char, typename Sink>
class format_parser {
public:
    constexpr format_parser(std::basic_string_view<Char> text, Sink& sink) noexcept : text_(text), sink_(sink) {}

    constexpr void run()
    {
        for (;;) {
            const std::size_t brace = text_.find(Char('{'), position_);
            if (brace == text_.npos) {
                emit_literal(text_.size());
                return;
            }
            position_ = brace + 1;
            if (peek() == Char('{')) {
                escaped_ = true;
                ++position_;
                continue;
            }
            emit_literal(brace);
            parse_specifier();
            literal_begin_ = position_;
        }
    }

private:
    /// The character at the position, which must not be the end.
    constexpr Char peek() const
    {
        if (position_ == text_.size())
            format_text_ends_inside_a_specifier();
        return text_[position_];
    }

    constexpr Char take()
    {
        const Char taken = peek();
        ++position_;
        return taken;
    }

    constexpr bool take_if(char wanted)
    {
        if (peek() != Char(wanted))
            return false;
        ++position_;
        return true;
    }

    constexpr bool at_digit() const { return peek() >= Char('0') && peek() <= Char('9'); }

    /// A run of decimal digits, 0 for none; wraps.
    constexpr std::uint32_t take_number()
    {
        std::uint32_t number = 0;
        while (at_digit())
            number = number * 10 + static_cast<std::uint32_t>(take() - Char('0'));
        return number;
    }

    constexpr void emit_literal(std::size_t end)
    {
        if (end == literal_begin_)
            return;
        FormatItem item;
        item.begin = static_cast<std::int32_t>(literal_begin_);
        item.end = static_cast<std::int32_t>(end);
        item.flags = flag_literal | (escaped_ ? flag_escaped : 0U);
        escaped_ = false;
        sink_(item);
    }

    constexpr void parse_specifier()
    {
        FormatItem item;
        item.argIndex = at_digit() ? static_cast<std::uint16_t>(take_number()) : next_argument_;
        next_argument_ = static_cast<std::uint16_t>(item.argIndex + 1);
        while (!take_if('}'))
            parse_letter(item);
        sink_(item);
    }

    constexpr void parse_letter(FormatItem& item)
    {
        switch (take()) {
        case Char('+'):
            item.flags |= flag_plus;
            break;
        case Char('c'):
            item.flags |= flag_character;
            break;
        case Char('e'):
            item.flags |= flag_ellipsis;
            break;
        case Char('l'):
            item.flags |= flag_grouped;
            break;
        case Char('n'):
            item.flags |= flag_n;
            break;
        case Char('u'):
            item.flags |= flag_unsigned;
            break;
        case Char('s'):
            item.flags |= take_if('a') ? flag_sa : flag_s;
            break;
        case Char('f'):
            parse_fill(item);
            break;
        case Char('p'):
            item.precision = static_cast<std::uint16_t>(take_number());
            break;
        case Char('a'):
            parse_alignment(item);
            break;
        case Char('b'):
            parse_base(item);
            break;
        case Char('t'):
            parse_time_pattern(item);
            break;
        case Char('w'):
            parse_width(item);
            break;
        case Char('?'):
            parse_condition(item);
            break;
        default:
            format_has_an_unknown_specifier_letter();
        }
    }

    constexpr void parse_alignment(FormatItem& item)
    {
        switch (take()) {
        case Char('l'):
            item.align = align_left;
            break;
        case Char('c'):
            item.align = align_centre;
            break;
        case Char('r'):
            item.align = align_right;
            break;
        default:
            break;
        }
    }

    /// In a narrow format a character of one byte.
    constexpr void parse_fill(FormatItem& item)
    {
        const Char fill = take();
        if (sizeof(Char) == 1 && (fill & 0x80) != 0)
            format_fill_is_more_than_one_unit();
        item.fill = static_cast<std::make_unsigned_t<Char>>(fill);
    }

    constexpr void parse_base(FormatItem& item)
    {
        if (take_if('0'))
            item.flags |= flag_hex_prefix;
        item.base = static_cast<std::uint8_t>(take_number());
        if (item.base != 16)
            return;
        if (take_if('x'))
            item.flags |= flag_lower_hex;
        else if (!take_if('X'))
            item.flags |= flag_default_hex;
        if (take_if('p'))
            item.flags |= flag_hex_padded;
    }

    constexpr void parse_time_pattern(FormatItem& item)
    {
        if (!take_if('('))
            format_time_has_no_opening_parenthesis();
        item.flags |= flag_time;
        item.begin = static_cast<std::int32_t>(position_);
        while (peek() != Char(')'))
            if (take() == Char('}'))
                format_time_pattern_has_a_closing_brace();
        item.end = static_cast<std::int32_t>(position_++);
    }

    constexpr void parse_width(FormatItem& item)
    {
        if (peek() != Char(','))
            item.minWidth = static_cast<std::uint16_t>(take_number());
        if (take_if(','))
            item.maxWidth = static_cast<std::uint16_t>(take_number());
    }

    constexpr void parse_condition(FormatItem& item)
    {
        item.flags |= flag_conditional;
        switch (take()) {
        case Char('<'):
            item.flags |= flag_condition_begin;
            break;
        case Char('|'):
            item.flags |= flag_condition_else;
            break;
        case Char('>'):
            item.flags |= flag_condition_end;
            break;
        default:
            format_condition_is_none_of_less_bar_greater();
        }
    }

    std::basic_string_view<Char> text_;
    Sink& sink_;
    std::size_t position_ = 0;
    std::size_t literal_begin_ = 0;
    std::uint16_t next_argument_ = 0;
    bool escaped_ = false;
};

template <typename Char, typename Sink>
constexpr void parse_format(std::basic_string_view<Char> text, Sink sink)
{
    format_parser<Char, Sink>(text, sink).run();
}

} // namespace fmtkit::details
