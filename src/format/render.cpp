#include "format/copy_text.h"
#include "format/extend.h"
#include "format/format.h"
#include "format/item_text.h"
#include "format/number_text.h"
#include "format/simple_number.h"

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
    if ((item.flags & flag_escaped) != 0) [[unlikely]]
        return details::write_escaped(out, text);
    return details::copy_text(out, text);
}

constexpr bool is_literal(const FormatItem& item)
{
    return (item.flags & flag_literal) != 0;
}

// What is not inlined leaves its registers to the frequent cases of who calls it.

/// \return null where the room may not be enough
template <typename Char>
[[gnu::noinline]] Char* write_other_if_it_fits(Char* out, std::size_t room, const basic_format_view<Char>& format,
                                               const FormatItem& item, const argument& value)
{
    if (value.is_number() && details::is_plain_number(item))
        return details::plain_number_room(item) <= room
                   ? details::write_plain_number(out, item, item.minWidth, details::magnitude_of(item, value))
                   : nullptr;
    return details::quick_room<Char>(item, value) <= room ? details::write_argument(out, format.text, item, value)
                                                          : nullptr;
}

template <typename Char>
[[gnu::noinline]] Char* write_if_it_fits(Char* out, std::size_t room, const basic_format_view<Char>& format,
                                         const FormatItem& item, const argument& value)
{
    if (details::simple_number_room <= room) {
        if (details::is_simple_number(item, value))
            return details::write_simple_number(out, item, static_cast<std::uint32_t>(value.bits()));
        if (details::is_simple_code(item, value))
            return details::write_simple_code(out, item, static_cast<std::uint32_t>(value.bits()));
    }
    return write_other_if_it_fits(out, room, format, item, value);
}

/// Results of up to this many units are made on the stack.
constexpr std::size_t short_result = 256;

/// Writes a result that is short.
/// \return its end; null where the room may not be enough
template <typename Char>
Char* write_short(Char (&buffer)[short_result], const basic_format_view<Char>& format,
                  std::span<const argument> arguments)
{
    const Char* const limit = buffer + short_result;
    Char* out = buffer;
    active_items items(format.items, arguments);
    while (const FormatItem* const item = items.next()) {
        const auto room = static_cast<std::size_t>(limit - out);
        if (is_literal(*item)) {
            if (part(format, *item).size() > room)
                return nullptr;
            out = write_literal(out, format, *item);
            continue;
        }
        const argument& value = arguments[item->argIndex];
        if (value.type() == details::own_text<Char> && details::is_without_width(*item)) {
            if (value.size() > room)
                return nullptr;
            out = details::copy_text(out, value.text<Char>());
            continue;
        }
        out = write_if_it_fits(out, room, format, *item, value);
        if (!out)
            return nullptr;
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
                                  : details::exact_room<Char>(*item, arguments[item->argIndex]);

    Char* end = details::extend(out, room);
    active_items items(format.items, arguments);
    while (const FormatItem* const item = items.next())
        end = is_literal(*item) ? write_literal(end, format, *item)
                                : details::write_argument(end, format.text, *item, arguments[item->argIndex]);
    out.resize(static_cast<std::size_t>(end - out.data()));
}

template <typename Char>
void append(std::basic_string<Char>& out, const basic_format_view<Char>& format, std::span<const argument> arguments)
{
    Char buffer[short_result];
    if (const Char* const end = write_short(buffer, format, arguments))
        out.append(buffer, static_cast<std::size_t>(end - buffer));
    else
        append_long(out, format, arguments);
}

template <typename Char>
std::basic_string<Char> to_string(const basic_format_view<Char>& format, std::span<const argument> arguments)
{
    Char buffer[short_result];
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
