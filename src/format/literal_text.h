#pragma once

#include "format/argument.h"
#include "format/compiled_format.h"
#include "format/copy_text.h"
#include "format/extend.h"
#include "format/item_text.h"
#include "format/number_text.h"

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

// Rendering of formats known at build time. Their constant table is walked while compiling: what is left for run time
// is copying texts and writing digits. Whatever is not frequent goes the way of formats compiled at run time.

namespace fmtkit::details {

/// An argument with its type, which is as good as its `kind`.
template <typename Value>
constexpr auto typed(const Value& value) noexcept
{
    if constexpr (std::same_as<Value, bool> || std::same_as<Value, girder::file_time>)
        return value;
    else if constexpr (std::signed_integral<Value>)
        return static_cast<std::conditional_t<sizeof(Value) <= 4, std::int32_t, std::int64_t>>(value);
    else if constexpr (std::unsigned_integral<Value>)
        return static_cast<std::conditional_t<sizeof(Value) <= 4, std::uint32_t, std::uint64_t>>(value);
    else if constexpr (std::convertible_to<const Value&, std::u16string_view>)
        return std::u16string_view(value);
    else
        return std::string_view(value);
}

template <typename Value>
concept typed_number = std::integral<Value> && !std::same_as<Value, bool>;

/// Whether numbers of the item's width are written without looking at their length.
template <std::unsigned_integral Number>
constexpr bool is_zero_filled(const FormatItem& item) noexcept
{
    return item.base == 10 && item.align == align_right && item.fill == u'0' && item.minWidth > 0 &&
           item.minWidth < powers_of_ten<Number>.size();
}

template <std::size_t Width, typename Char, std::unsigned_integral Number>
Char* write_zero_filled(Char* out, Number value) noexcept
{
    for (std::size_t i = Width; i > 0; value /= 10)
        out[--i] = static_cast<Char>('0' + static_cast<char>(value % 10));
    return out + Width;
}

template <FormatItem Item, typename Char, typed_number Number>
Char* write_number(Char* out, Number value) noexcept
{
    using bits_type = std::make_unsigned_t<Number>;
    constexpr bool is_unsigned = (Item.flags & flag_unsigned) != 0 || std::unsigned_integral<Number>;
    const auto number = split_sign(static_cast<bits_type>(value), is_unsigned, Item.flags);
    if constexpr (is_zero_filled<bits_type>(Item))
        if (number.sign == 0 && number.magnitude < powers_of_ten<bits_type>[Item.minWidth])
            return write_zero_filled<Item.minWidth>(out, number.magnitude);
    return write_plain_number(out, Item, Item.minWidth, number);
}

/// Results for which this many units are enough are made on the stack: a string has room for very short ones in itself.
inline constexpr std::size_t short_literal_result = 64;

/// \tparam Format  a literal_format
/// \tparam Values  results of typed()
template <typename Format, typename... Values>
class literal_renderer {
public:
    using character = typename Format::character;
    using text_view = std::basic_string_view<character>;

    explicit literal_renderer(const Values&... values) noexcept : values_(values...) {}

    /// \return false, with nothing done, where the string may have to grow for a result that is not short
    bool append_to(std::basic_string<character>& out) const
    {
        character buffer[short_literal_result];
        const std::size_t units = room();
        const bool is_in_place = units <= out.capacity() - out.size();
        if (!is_in_place && units > short_literal_result)
            return false;
        character* const begin = is_in_place ? extend(out, units) : buffer;
        const character* const end = write(begin);
        if (is_in_place)
            out.resize(static_cast<std::size_t>(end - out.data()));
        else
            out.append(buffer, static_cast<std::size_t>(end - buffer));
        return true;
    }

    std::basic_string<character> to_string() const
    {
        std::basic_string<character> out;
        character buffer[short_literal_result];
        const std::size_t units = room();
        character* const begin = units <= short_literal_result ? buffer : extend(out, units);
        const character* const end = write(begin);
        if (begin == buffer)
            return {buffer, static_cast<std::size_t>(end - buffer)};
        out.resize(static_cast<std::size_t>(end - begin));
        return out;
    }

private:
    /// Units that are enough.
    std::size_t room() const noexcept
    {
        return [&]<std::size_t... I>(std::index_sequence<I...>) {
            return (std::size_t{0} + ... + room_of<I>());
        }(std::make_index_sequence<Format::table.size()>());
    }

    character* write(character* out) const
    {
        [&]<std::size_t... I>(std::index_sequence<I...>) {
            bool conditions[deepest() + 1] = {};
            ((out = write<I>(out, conditions)), ...);
        }(std::make_index_sequence<Format::table.size()>());
        return out;
    }

    static constexpr bool has_argument(const FormatItem& item) { return item.argIndex < sizeof...(Values); }

    /// How many conditions are open when an item is reached.
    static constexpr auto depths = [] {
        std::array<std::size_t, Format::table.size()> depths{};
        std::size_t depth = 0;
        for (std::size_t i = 0; i < depths.size(); ++i) {
            const FormatItem& item = Format::table[i];
            depths[i] = depth;
            if ((item.flags & flag_conditional) == 0 || !has_argument(item))
                continue;
            if ((item.flags & flag_condition_begin) != 0)
                ++depth;
            else if ((item.flags & flag_condition_else) == 0 && depth > 0)
                --depth;
        }
        return depths;
    }();

    static constexpr std::size_t deepest()
    {
        return depths.empty() ? 0 : *std::max_element(depths.begin(), depths.end());
    }

    template <FormatItem Item>
    using value_type = std::tuple_element_t<Item.argIndex, std::tuple<Values...>>;

    template <std::size_t I>
    std::size_t room_of() const noexcept
    {
        constexpr FormatItem item = Format::table[I];
        if constexpr ((item.flags & flag_literal) != 0) {
            return item.end - item.begin;
        } else if constexpr (!has_argument(item) || (item.flags & flag_conditional) != 0) {
            return 0;
        } else {
            using value = value_type<item>;
            if constexpr (typed_number<value> && is_plain_number(item))
                return plain_number_room(item);
            else if constexpr (std::same_as<value, text_view> && is_without_width(item))
                return std::get<item.argIndex>(values_).size();
            else if constexpr (std::same_as<value, girder::file_time> && is_without_width(item))
                return time_room<character>;
            else
                return quick_room<character>(item, argument(std::get<item.argIndex>(values_)));
        }
    }

    template <std::size_t I>
    character* write(character* out, bool* conditions) const
    {
        constexpr FormatItem item = Format::table[I];
        constexpr std::size_t depth = depths[I];
        if constexpr ((item.flags & flag_conditional) == 0) {
            for (std::size_t i = 0; i < depth; ++i)
                if (!conditions[i])
                    return out;
            return write<item>(out);
        } else if constexpr (has_argument(item)) {
            if constexpr ((item.flags & flag_condition_begin) != 0)
                conditions[depth] = argument(std::get<item.argIndex>(values_)).is_true();
            else if constexpr ((item.flags & flag_condition_else) != 0 && depth > 0)
                conditions[depth - 1] = !conditions[depth - 1];
        }
        return out;
    }

    template <FormatItem Item>
    character* write(character* out) const
    {
        if constexpr ((Item.flags & flag_literal) != 0) {
            constexpr std::size_t size = Item.end - Item.begin;
            const character* const text = Format::text().data() + Item.begin;
            if constexpr ((Item.flags & flag_escaped) != 0)
                return write_escaped(out, text_view(text, size));
            else
                return copy_text(out, text_view(text, size));
        } else if constexpr (has_argument(Item)) {
            using value = value_type<Item>;
            const value& argument_used = std::get<Item.argIndex>(values_);
            if constexpr (typed_number<value> && is_plain_number(Item))
                return write_number<Item>(out, argument_used);
            else if constexpr (std::same_as<value, text_view> && is_without_width(Item))
                return copy_text(out, argument_used);
            else if constexpr (std::same_as<value, girder::file_time> && is_without_width(Item))
                return write_time_or_nothing<Item>(out, argument_used);
            else
                return write_argument(out, Format::text(), Item, argument(argument_used));
        } else {
            return out;
        }
    }

    template <FormatItem Item>
    static character* write_time_or_nothing(character* out, girder::file_time time)
    {
        character* const end = write_time(out, Format::text(), Item, time);
        return end ? end : out;
    }

    std::tuple<Values...> values_;
};

} // namespace fmtkit::details
