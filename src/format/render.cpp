#include "format/copy_text.h"
#include "format/format.h"
#include "format/item_text.h"
#include "format/number_text.h"

#include <cstddef>

namespace fmtkit {
namespace {

/// The item that ends or negates a condition which does not hold, from the items behind the one that made it fail.
/// Conditions between, which are open or not without effect, end first.
/// \param arguments  how many there are: an item whose argument is missing does nothing
const FormatItem* end_of_inactive(const FormatItem* item, const FormatItem* end, std::size_t arguments) noexcept
{
    std::size_t open_between = 0;
    for (; item != end; ++item) {
        if ((item->flags & flag_conditional) == 0 || item->argIndex >= arguments)
            continue;
        if ((item->flags & flag_condition_begin) != 0)
            ++open_between;
        else if (open_between == 0)
            break;
        else if ((item->flags & flag_condition_else) == 0)
            --open_between;
    }
    return item;
}

/// Goes through the items of a format that write something with these arguments.
///
/// Conditions form a stack, and an item is active when all of it is true. A count stands for the stack: while an item
/// is active every open condition is true, and the inactive ones are passed at once.
class active_items {
public:
    active_items(std::span<const FormatItem> items, std::span<const argument> arguments) noexcept
        : next_(items.data()), end_(next_ + items.size()), arguments_(arguments)
    {}

    /// Null at the end.
    [[gnu::always_inline]] const FormatItem* next() noexcept
    {
        while (next_ != end_) {
            const FormatItem& item = *next_++;
            if ((item.flags & flag_literal) != 0)
                return &item;
            if (item.argIndex >= arguments_.size())
                continue;
            if ((item.flags & flag_conditional) == 0)
                return &item;
            enter_or_leave(item);
        }
        return nullptr;
    }

private:
    [[gnu::always_inline]] void enter_or_leave(const FormatItem& item) noexcept
    {
        const bool begins = (item.flags & flag_condition_begin) != 0;
        if (begins && arguments_[item.argIndex].is_true()) {
            ++open_;
            return;
        }
        if (!begins) {
            if (open_ == 0)
                return;
            --open_;
            if ((item.flags & flag_condition_else) == 0)
                return;
        }
        const FormatItem* const turn = end_of_inactive(next_, end_, arguments_.size());
        if (turn == end_) {
            next_ = end_;
            return;
        }
        next_ = turn + 1;
        if ((turn->flags & flag_condition_else) != 0)
            ++open_;
    }

    const FormatItem* next_;
    const FormatItem* end_;
    std::span<const argument> arguments_;
    std::size_t open_ = 0;
};

template <typename Char>
constexpr std::basic_string_view<Char> part(const basic_format_view<Char>& format, const FormatItem& item)
{
    return {format.text.data() + item.begin, static_cast<std::size_t>(item.end - item.begin)};
}

template <typename Char>
Char* write_literal(Char* out, const basic_format_view<Char>& format, const FormatItem& item)
{
    const std::basic_string_view<Char> text = part(format, item);
    return (item.flags & flag_escaped) != 0 ? details::write_escaped(out, text) : details::copy_text(out, text);
}

constexpr bool is_literal(const FormatItem& item)
{
    return (item.flags & flag_literal) != 0;
}

/// The most frequent arguments are written here, the others where all rules are known.
/// \return null where there is no room
template <typename Char>
[[gnu::always_inline]] inline Char* write_short(Char* out, const Char* limit, const basic_format_view<Char>& format,
                                                const FormatItem& item, const argument& value)
{
    const auto room = static_cast<std::size_t>(limit - out);
    if (details::is_simple_number(item, value) && room >= details::simple_number_room)
        return details::write_simple_number(out, item, value.as_unsigned());
    if (value.type() == details::own_text<Char> && details::is_without_width(item)) {
        const std::basic_string_view<Char> text = value.text<Char>();
        return room >= text.size() ? details::copy_text(out, text) : nullptr;
    }
    return details::write_argument_if_it_fits(out, limit, format.text, item, value);
}

/// A result of little length, written to the caller's stack.
/// \return its end; null where there is no room
template <typename Char>
Char* write_short(Char (&buffer)[details::short_result], const basic_format_view<Char>& format,
                  std::span<const argument> arguments)
{
    const Char* const limit = buffer + details::short_result;
    Char* out = buffer;
    active_items items(format.items, arguments);
    while (const FormatItem* const item = items.next()) {
        if (!is_literal(*item)) {
            out = write_short(out, limit, format, *item, arguments[item->argIndex]);
            if (!out)
                return nullptr;
        } else {
            if (static_cast<std::size_t>(limit - out) < part(format, *item).size())
                return nullptr;
            out = write_literal(out, format, *item);
        }
    }
    return out;
}

/// Long results are measured first, so that the string grows once.
template <typename Char>
void append_long(std::basic_string<Char>& out, const basic_format_view<Char>& format,
                 std::span<const argument> arguments)
{
    std::size_t room = 0;
    active_items measured(format.items, arguments);
    while (const FormatItem* const item = measured.next())
        room += is_literal(*item) ? part(format, *item).size()
                                  : details::exact_room(format.text, *item, arguments[item->argIndex]);

    const std::size_t before = out.size();
    out.resize(before + room);
    Char* end = out.data() + before;
    active_items items(format.items, arguments);
    while (const FormatItem* const item = items.next())
        end = is_literal(*item) ? write_literal(end, format, *item)
                                : details::write_argument(end, format.text, *item, arguments[item->argIndex]);
    out.resize(static_cast<std::size_t>(end - out.data()));
}

// Most results are short: they are made on the stack and copied once.

template <typename Char>
void append(std::basic_string<Char>& out, const basic_format_view<Char>& format, std::span<const argument> arguments)
{
    Char buffer[details::short_result];
    if (const Char* const end = write_short(buffer, format, arguments))
        out.append(buffer, static_cast<std::size_t>(end - buffer));
    else
        append_long(out, format, arguments);
}

template <typename Char>
std::basic_string<Char> to_string(const basic_format_view<Char>& format, std::span<const argument> arguments)
{
    Char buffer[details::short_result];
    if (const Char* const end = write_short(buffer, format, arguments))
        return {buffer, static_cast<std::size_t>(end - buffer)};
    std::basic_string<Char> out;
    append_long(out, format, arguments);
    return out;
}

} // namespace

void render(std::u16string& out, const basic_format_view<char16_t>& format, std::span<const argument> arguments)
{
    append(out, format, arguments);
}

void render(std::string& out, const basic_format_view<char>& format, std::span<const argument> arguments)
{
    append(out, format, arguments);
}

std::u16string rendered(const basic_format_view<char16_t>& format, std::span<const argument> arguments)
{
    return to_string(format, arguments);
}

std::string rendered(const basic_format_view<char>& format, std::span<const argument> arguments)
{
    return to_string(format, arguments);
}

} // namespace fmtkit
