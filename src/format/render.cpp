#include "base/utf.h"
#include "format/format.h"
#include "format/local_time.h"
#include "format/time_text.h"

#include <array>
#include <cstddef>
#include <optional>

namespace fmtkit {
namespace {

template <typename Char>
using text_view = std::basic_string_view<Char>;

/// The longest number: 64 binary digits, or 20 decimal ones with six separators, behind a sign or a prefix.
constexpr std::size_t number_room = 128;

/// Digits are written from the back.
template <typename Char>
class number_text {
public:
    void put(Char unit) noexcept { *--begin_ = unit; }
    void put(text_view<Char> text) noexcept
    {
        for (std::size_t i = text.size(); i > 0; --i)
            put(text[i - 1]);
    }
    std::size_t size() const noexcept { return static_cast<std::size_t>(buffer_.data() + number_room - begin_); }
    text_view<Char> view() const noexcept { return {begin_, size()}; }

private:
    std::array<Char, number_room> buffer_;
    Char* begin_ = buffer_.data() + number_room;
};

template <typename Char>
std::basic_string<Char> converted(std::u16string_view text)
{
    if constexpr (sizeof(Char) == 1)
        return girder::to_utf8(text);
    else
        return std::u16string(text);
}

template <typename Char>
void put_decimal(number_text<Char>& out, std::uint64_t value, bool grouped)
{
    // A locale's separator is one or two characters; a longer one is not used.
    constexpr std::size_t longest_separator = 4;
    const std::basic_string<Char> separator =
        grouped ? converted<Char>(details::thousands_separator()) : std::basic_string<Char>();
    const bool separates = !separator.empty() && separator.size() <= longest_separator;
    int digits = 0;
    do {
        if (separates && digits != 0 && digits % 3 == 0)
            out.put(text_view<Char>(separator));
        out.put(static_cast<Char>('0' + static_cast<char>(value % 10)));
        value /= 10;
        ++digits;
    } while (value != 0);
}

template <typename Char>
void put_power_of_two(number_text<Char>& out, std::uint64_t value, unsigned bits, bool lower)
{
    const char* const digits = lower ? "0123456789abcdef" : "0123456789ABCDEF";
    const std::uint64_t mask = (1U << bits) - 1;
    do {
        out.put(static_cast<Char>(digits[value & mask]));
        value >>= bits;
    } while (value != 0);
}

template <typename Char>
void put_hexadecimal(number_text<Char>& out, std::uint64_t value, std::uint32_t flags)
{
    put_power_of_two(out, value, 4, (flags & flag_lower_hex) != 0);
    if ((flags & flag_hex_padded) != 0)
        for (const std::size_t width = out.size() <= 8 ? 8 : 16; out.size() < width;)
            out.put(Char('0'));
    if ((flags & flag_hex_prefix) != 0) {
        out.put(Char('x'));
        out.put(Char('0'));
    }
}

template <typename Char>
void put_number(number_text<Char>& out, const FormatItem& item, const argument& value)
{
    const bool is_unsigned = (item.flags & flag_unsigned) != 0 || value.type() == argument::kind::unsigned_number;
    const bool negative = !is_unsigned && static_cast<std::int64_t>(value.bits()) < 0;
    const std::uint64_t magnitude = is_unsigned ? value.as_unsigned() : negative ? 0 - value.bits() : value.bits();
    switch (item.base) {
    case 2:
        put_power_of_two(out, magnitude, 1, false);
        break;
    case 8:
        put_power_of_two(out, magnitude, 3, false);
        break;
    case 10:
        put_decimal(out, magnitude, (item.flags & flag_grouped) != 0);
        break;
    default:
        put_hexadecimal(out, magnitude, item.flags);
        break;
    }
    if (negative)
        out.put(Char('-'));
    else if (!is_unsigned && (item.flags & flag_plus) != 0)
        out.put(Char('+'));
}

template <typename Char>
class renderer {
public:
    using string = std::basic_string<Char>;
    using view = text_view<Char>;

    renderer(string& out, const basic_format_view<Char>& format, std::span<const argument> arguments)
        : out_(out), format_(format), arguments_(arguments)
    {}

    void run()
    {
        for (const FormatItem& item : format_.items) {
            const bool active = inactive_ == 0;
            if ((item.flags & flag_conditional) != 0)
                condition(item);
            else if (active && (item.flags & flag_literal) != 0)
                literal(item);
            else if (active && item.argIndex < arguments_.size())
                value(item, arguments_[item.argIndex]);
        }
    }

private:
    /// The stack of conditions; `inactive_` counts those that are false.
    void condition(const FormatItem& item)
    {
        if (item.argIndex >= arguments_.size())
            return;
        if ((item.flags & flag_condition_begin) != 0) {
            conditions_.push_back(arguments_[item.argIndex].is_true() ? 1 : 0);
            inactive_ += conditions_.back() != 0 ? 0 : 1;
        } else if (!conditions_.empty()) {
            const bool was_true = conditions_.back() != 0;
            inactive_ -= was_true ? 0 : 1;
            if ((item.flags & flag_condition_else) != 0) {
                conditions_.back() = was_true ? 0 : 1;
                inactive_ += was_true ? 1 : 0;
            } else {
                conditions_.pop_back();
            }
        }
    }

    void literal(const FormatItem& item)
    {
        const view text = slice(item);
        if ((item.flags & flag_escaped) == 0) {
            out_.append(text);
            return;
        }
        for (std::size_t i = 0; i < text.size(); ++i) {
            out_.push_back(text[i]);
            if (text[i] == Char('{'))
                ++i;
        }
    }

    view slice(const FormatItem& item) const
    {
        return format_.text.substr(static_cast<std::size_t>(item.begin),
                                   static_cast<std::size_t>(item.end - item.begin));
    }

    void value(const FormatItem& item, const argument& argument_used)
    {
        switch (argument_used.type()) {
        case argument::kind::signed_number:
        case argument::kind::unsigned_number:
            number(item, argument_used);
            break;
        case argument::kind::wide_text:
            text(item, argument_used.wide_text());
            break;
        case argument::kind::narrow_text:
            text(item, argument_used.narrow_text());
            break;
        case argument::kind::condition:
            break;
        case argument::kind::time:
            time(item, argument_used.time());
            break;
        }
    }

    void number(const FormatItem& item, const argument& argument_used)
    {
        number_text<Char> digits;
        if ((item.flags & flag_character) != 0) {
            character(item, static_cast<char16_t>(argument_used.bits()));
            return;
        }
        put_number(digits, item, argument_used);
        padded(item, digits.view());
    }

    void character(const FormatItem& item, char16_t code) { text(item, std::u16string_view(&code, 1)); }

    template <typename Other>
    void text(const FormatItem& item, std::basic_string_view<Other> value_text)
    {
        if constexpr (std::is_same_v<Other, Char>)
            padded(item, value_text);
        else if constexpr (sizeof(Other) == 1)
            padded(item, girder::to_utf16(value_text));
        else
            padded(item, girder::to_utf8(value_text));
    }

    void time(const FormatItem& item, girder::file_time moment)
    {
        if ((item.flags & flag_time) == 0)
            return;
        const auto pattern = [&] {
            if constexpr (sizeof(Char) == 1)
                return girder::to_utf16(slice(item));
            else
                return slice(item);
        }();
        if (const std::optional<std::u16string> written = details::format_time(moment, pattern))
            text(item, std::u16string_view(*written));
    }

    /// The width rules.
    void padded(const FormatItem& item, view text)
    {
        if (text.size() < item.minWidth)
            pad(item, text);
        else if (item.maxWidth > 0 && text.size() > item.maxWidth)
            cut(item, text);
        else
            out_.append(text);
    }

    void pad(const FormatItem& item, view text)
    {
        const std::size_t padding = item.minWidth - text.size();
        const std::size_t before = item.align == align_right ? padding : item.align == align_centre ? padding / 2 : 0;
        out_.append(before, static_cast<Char>(item.fill));
        out_.append(text);
        out_.append(padding - before, static_cast<Char>(item.fill));
    }

    void cut(const FormatItem& item, view text)
    {
        const bool marked = (item.flags & flag_ellipsis) != 0;
        const std::size_t kept = marked ? item.maxWidth - std::size_t{1} : item.maxWidth;
        if (item.align == align_right) {
            if (marked)
                ellipsis();
            out_.append(text.substr(text.size() - kept));
        } else {
            out_.append(text.substr(0, kept));
            if (marked)
                ellipsis();
        }
    }

    void ellipsis() { out_ += converted<Char>(u"…"); }

    string& out_;
    basic_format_view<Char> format_;
    std::span<const argument> arguments_;
    std::string conditions_; ///< a byte for each open condition
    std::size_t inactive_ = 0;
};

} // namespace

void render(std::u16string& out, const basic_format_view<char16_t>& format, std::span<const argument> arguments)
{
    renderer<char16_t>(out, format, arguments).run();
}

void render(std::string& out, const basic_format_view<char>& format, std::span<const argument> arguments)
{
    renderer<char>(out, format, arguments).run();
}

} // namespace fmtkit
