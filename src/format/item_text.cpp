#include "format/item_text.h"

#include "base/utf.h"
#include "format/copy_text.h"
#include "format/local_time.h"
#include "format/number_text.h"
#include "format/time_text.h"

#include <algorithm>
#include <array>
#include <concepts>

namespace fmtkit::details {
namespace {

/// A locale's separator is one or two characters; of a longer one this much is used.
constexpr std::size_t longest_separator = 3;

/// The longest number in natural form: 64 binary digits behind a sign. Decimal ones: 20 digits and six separators of at
/// most three UTF-16 units, nine bytes each.
constexpr std::size_t number_room = 80;
/// An ungrouped decimal number or a hexadecimal one with its prefix, each behind a sign.
constexpr std::size_t short_number_room = 21;

constexpr std::size_t most_bytes_of_unit = 3;
constexpr char16_t ellipsis = u'…';

template <typename Char>
constexpr std::size_t ellipsis_size = sizeof(Char) == 1 ? most_bytes_of_unit : 1;

template <typename Char>
Char* write_text(Char* out, std::u16string_view text) noexcept
{
    if constexpr (sizeof(Char) == 1)
        return girder::write_utf8(out, text);
    else
        return copy_text(out, text);
}

template <typename Char>
Char* write_text(Char* out, std::string_view text) noexcept
{
    if constexpr (sizeof(Char) == 1)
        return copy_text(out, text);
    else
        return girder::write_utf16(out, text);
}

/// What the width rules make of a text of `size` units, and how much room they need: the text is written whole and then
/// padded or cut where it stands.
template <typename Char>
constexpr std::size_t room_within_width(const FormatItem& item, std::size_t size)
{
    return std::max<std::size_t>(size, item.minWidth) + (item.maxWidth != 0 ? ellipsis_size<Char> : 0);
}

template <typename Char>
Char* pad(Char* text, std::size_t size, const FormatItem& item)
{
    const std::size_t padding = item.minWidth - size;
    const std::size_t before = item.align == align_right ? padding : item.align == align_centre ? padding / 2 : 0;
    std::char_traits<Char>::move(text + before, text, size);
    std::fill_n(text, before, static_cast<Char>(item.fill));
    return std::fill_n(text + before + size, padding - before, static_cast<Char>(item.fill));
}

/// Whether a unit belongs to the same character as the one before it.
template <typename Char>
constexpr bool is_continuation(Char unit)
{
    if constexpr (sizeof(Char) == 1)
        return (static_cast<unsigned char>(unit) & 0xC0) == 0x80;
    else
        return (unit & 0xFC00) == 0xDC00;
}

/// A character that the cut would split is left out.
template <typename Char>
Char* cut(Char* text, std::size_t size, const FormatItem& item)
{
    const bool marked = (item.flags & flag_ellipsis) != 0;
    const std::u16string_view mark(&ellipsis, marked ? 1 : 0);
    std::size_t kept = item.maxWidth - mark.size();
    if (item.align != align_right) {
        while (kept > 0 && is_continuation(text[kept]))
            --kept;
        return write_text(text + kept, mark);
    }
    while (kept > 0 && is_continuation(text[size - kept]))
        --kept;
    Char* const behind_mark = text + (marked ? ellipsis_size<Char> : 0);
    // Towards the front or, where the mark is longer than what is left out, towards the back.
    std::char_traits<Char>::move(behind_mark, text + size - kept, kept);
    write_text(text, mark);
    return behind_mark + kept;
}

/// The width rules, on the text between `text` and `end`.
template <typename Char>
Char* within_width(Char* text, Char* end, const FormatItem& item)
{
    const auto size = static_cast<std::size_t>(end - text);
    if (size < item.minWidth)
        return pad(text, size, item);
    if (item.maxWidth > 0 && size > item.maxWidth)
        return cut(text, size, item);
    return end;
}

// --------------------------------------------------------------------------------------------------------- numbers

template <typename Char>
Char* write_grouped(Char* out, std::uint64_t value)
{
    std::array<Char, longest_separator * most_bytes_of_unit> separator;
    const std::u16string_view known = std::u16string_view(thousands_separator()).substr(0, longest_separator);
    const auto separator_size = static_cast<std::size_t>(write_text(separator.data(), known) - separator.data());

    std::array<Char, 20> digits;
    const std::size_t count = decimal_size(value);
    write_decimal_before(digits.data() + count, value);
    for (std::size_t i = 0; i < count; ++i) {
        if (i != 0 && (count - i) % 3 == 0)
            out = std::copy_n(separator.data(), separator_size, out);
        *out++ = digits[i];
    }
    return out;
}

template <typename Char>
Char* write_small_base(Char* out, std::uint64_t value, unsigned bits_of_digit)
{
    const std::size_t size = digits_of_bits(value, bits_of_digit);
    write_digits(out, size, value, bits_of_digit, "01234567");
    return out + size;
}

template <typename Char>
Char* write_number(Char* out, const FormatItem& item, const argument& value)
{
    const auto number = magnitude_of(item, value);
    const bool is_grouped = item.base == 10 && (item.flags & flag_grouped) != 0;
    if (!is_grouped && item.base != 2 && item.base != 8)
        return write_plain_number(out, item, 0, number);
    if (number.sign != 0)
        *out++ = static_cast<Char>(number.sign);
    if (is_grouped)
        return write_grouped(out, number.magnitude);
    return write_small_base(out, number.magnitude, item.base == 2 ? 1 : 3);
}

template <typename Char>
Char* write_number_or_character(Char* out, const FormatItem& item, const argument& value)
{
    if ((item.flags & flag_character) == 0)
        return write_number(out, item, value);
    const auto code = static_cast<char16_t>(value.bits());
    return write_text(out, std::u16string_view(&code, 1));
}

std::size_t room_for_number(const FormatItem& item)
{
    const bool is_short = (item.base == 10 && (item.flags & flag_grouped) == 0) || item.base == 16;
    return is_short ? short_number_room : number_room;
}

// ----------------------------------------------------------------------------------------------------------- texts

/// What the width rules look at of a text in the format's own encoding, so that no more is copied.
template <typename Char>
std::basic_string_view<Char> within_maximum(const FormatItem& item, std::basic_string_view<Char> text)
{
    // Too long for padding, and one more than is kept: within_width cuts it.
    const std::size_t needed = std::max<std::size_t>(item.maxWidth + std::size_t{1}, item.minWidth);
    if (item.maxWidth == 0 || text.size() <= needed)
        return text;
    return item.align == align_right ? text.substr(text.size() - needed) : text.substr(0, needed);
}

template <typename Char, typename Unit>
Char* write_text(Char* out, const FormatItem& item, std::basic_string_view<Unit> text)
{
    if constexpr (std::same_as<Char, Unit>)
        text = within_maximum(item, text);
    return write_text(out, text);
}

template <typename Char, typename Unit>
std::size_t most_units(std::basic_string_view<Unit> text)
{
    return sizeof(Char) < sizeof(Unit) ? text.size() * most_bytes_of_unit : text.size();
}

template <typename Char>
std::size_t exact_units(const FormatItem& item, std::u16string_view text)
{
    if constexpr (sizeof(Char) == 1)
        return girder::utf8_size(text);
    else
        return within_maximum(item, text).size();
}

template <typename Char>
std::size_t exact_units(const FormatItem& item, std::string_view text)
{
    if constexpr (sizeof(Char) == 1)
        return within_maximum(item, text).size();
    else
        return girder::utf16_size(text);
}

// ----------------------------------------------------------------------------------------------------------- times

template <typename Char>
std::basic_string_view<Char> pattern_of(const FormatItem& item, std::basic_string_view<Char> format)
{
    return format.substr(static_cast<std::size_t>(item.begin), static_cast<std::size_t>(item.end - item.begin));
}

/// The argument's text before the width rules. Null when nothing is written, not even padding.
template <typename Char>
Char* write_natural(Char* out, std::basic_string_view<Char> format, const FormatItem& item, const argument& value)
{
    switch (value.type()) {
    case argument::kind::signed_number:
    case argument::kind::unsigned_number:
        return write_number_or_character(out, item, value);
    case argument::kind::wide_text:
        return write_text(out, item, value.wide_text());
    case argument::kind::narrow_text:
        return write_text(out, item, value.narrow_text());
    case argument::kind::time:
        return write_time(out, format, item, value.time());
    case argument::kind::condition:
        break;
    }
    return nullptr;
}

} // namespace

template <typename Char>
std::size_t quick_room(const FormatItem& item, const argument& value) noexcept
{
    switch (value.type()) {
    case argument::kind::signed_number:
    case argument::kind::unsigned_number:
        return room_within_width<Char>(item, room_for_number(item));
    case argument::kind::wide_text:
        return room_within_width<Char>(item, most_units<Char>(value.wide_text()));
    case argument::kind::narrow_text:
        return room_within_width<Char>(item, most_units<Char>(value.narrow_text()));
    case argument::kind::time:
        return room_within_width<Char>(item, time_room<Char>);
    case argument::kind::condition:
        break;
    }
    return 0;
}

template <typename Char>
std::size_t exact_room(const FormatItem& item, const argument& value)
{
    if (value.type() == argument::kind::wide_text)
        return room_within_width<Char>(item, exact_units<Char>(item, value.wide_text()));
    if (value.type() == argument::kind::narrow_text)
        return room_within_width<Char>(item, exact_units<Char>(item, value.narrow_text()));
    if (!value.is_number())
        return quick_room<Char>(item, value);
    std::array<Char, number_room> scratch;
    const Char* const end = write_number_or_character(scratch.data(), item, value);
    return room_within_width<Char>(item, static_cast<std::size_t>(end - scratch.data()));
}

template <typename Char>
Char* write_argument(Char* out, std::basic_string_view<Char> format, const FormatItem& item, const argument& value)
{
    if (value.is_number() && is_plain_number(item))
        return write_plain_number(out, item, item.minWidth, magnitude_of(item, value));
    Char* const end = write_natural(out, format, item, value);
    return end ? within_width(out, end, item) : out;
}

template <typename Char>
Char* write_time(Char* out, std::basic_string_view<Char> format, const FormatItem& item, girder::file_time time)
{
    if ((item.flags & flag_time) == 0)
        return nullptr;
    const std::basic_string_view<Char> pattern = pattern_of(item, format);
    if constexpr (sizeof(Char) == 1) {
        char16_t text[time_text_room];
        const char16_t* const end = write_time_text(text, time, pattern);
        return end ? write_text(out, std::u16string_view(text, end)) : nullptr;
    } else {
        return write_time_text(out, time, pattern);
    }
}

template <typename Char>
Char* write_escaped(Char* out, std::basic_string_view<Char> literal) noexcept
{
    for (std::size_t i = 0; i < literal.size(); ++i) {
        *out++ = literal[i];
        if (literal[i] == Char('{'))
            ++i;
    }
    return out;
}

template std::size_t quick_room<char>(const FormatItem&, const argument&) noexcept;
template std::size_t quick_room<char16_t>(const FormatItem&, const argument&) noexcept;
template std::size_t exact_room<char>(const FormatItem&, const argument&);
template std::size_t exact_room<char16_t>(const FormatItem&, const argument&);
template char* write_argument(char*, std::string_view, const FormatItem&, const argument&);
template char16_t* write_argument(char16_t*, std::u16string_view, const FormatItem&, const argument&);
template char* write_time(char*, std::string_view, const FormatItem&, girder::file_time);
template char16_t* write_time(char16_t*, std::u16string_view, const FormatItem&, girder::file_time);
template char* write_escaped(char*, std::string_view) noexcept;
template char16_t* write_escaped(char16_t*, std::u16string_view) noexcept;

} // namespace fmtkit::details
