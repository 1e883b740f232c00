#include "ui/text_flow.h"

#include "base/utf.h"

#include <algorithm>
#include <utility>

namespace girder::ui {
namespace {

bool is_ideograph(char16_t unit) noexcept
{
    return (unit >= 0x2E80 && unit < 0xD800) || (unit >= 0xF900 && unit < 0xFE00) || unit >= 0xFF00;
}

/// The length of the first word with the blanks behind it. A line feed ends it.
std::size_t word_length(std::u16string_view text)
{
    if (is_ideograph(text.front()))
        return 1;
    std::size_t end = 0;
    while (end < text.size() && text[end] != u' ' && text[end] != u'\n' && !is_ideograph(text[end]))
        ++end;
    while (end < text.size() && text[end] == u' ')
        ++end;
    return end;
}

std::u16string_view without_blanks(std::u16string_view word)
{
    return word.substr(0, word.find_last_not_of(u' ') + 1);
}

class line_breaker {
public:
    line_breaker(const rich_text& text, int width, const piece_measure& measure)
        : text_(text.text), width_(width), measure_(measure)
    {}

    text_flow run(const std::vector<text_run>& runs)
    {
        text_style style;
        for (const text_run& each : runs) {
            style = each.style;
            for (std::size_t at = each.begin; at < each.begin + each.length;) {
                const std::u16string_view rest = text_.substr(at, each.begin + each.length - at);
                if (rest.front() == u'\n') {
                    end_line(style);
                    ++at;
                } else {
                    const std::size_t length = word_length(rest);
                    put_word(at, length, style);
                    at += length;
                }
            }
        }
        end_line(style);
        made_.size.height = top_;
        return std::move(made_);
    }

private:
    int width_of(std::size_t begin, std::size_t length, const text_style& style) const
    {
        return measure_(text_.substr(begin, length), style).width;
    }

    void put_word(std::size_t begin, std::size_t length, const text_style& style)
    {
        std::size_t visible = without_blanks(text_.substr(begin, length)).size();
        if (x_ > 0 && x_ + width_of(begin, visible, style) > width_)
            end_line(style);
        while (visible > 1 && width_of(begin, visible, style) > width_) {
            const std::size_t part = fitting(begin, visible, style);
            if (part == visible)
                break;
            put(begin, part, part, style);
            end_line(style);
            begin += part;
            length -= part;
            visible -= part;
        }
        put(begin, length, visible, style);
    }

    /// How many of the word's characters a line takes; at least one.
    std::size_t fitting(std::size_t begin, std::size_t length, const text_style& style) const
    {
        std::size_t fits = 0;
        std::size_t too_many = length;
        while (too_many - fits > 1) {
            const std::size_t middle = fits + (too_many - fits) / 2;
            (width_of(begin, middle, style) <= width_ ? fits : too_many) = middle;
        }
        if (fits > 0 && is_high_surrogate(text_[begin + fits - 1]))
            --fits;
        if (fits > 0)
            return fits;
        return is_high_surrogate(text_[begin]) ? std::min<std::size_t>(2, length) : 1;
    }

    void put(std::size_t begin, std::size_t length, std::size_t visible, const text_style& style)
    {
        const piece_extent room = measure_(text_.substr(begin, length), style);
        made_.pieces.push_back(
            {.begin = begin,
             .length = length,
             .style = style,
             .place = {.x = x_, .y = -room.ascent, .width = room.width, .height = room.ascent + room.descent}});
        made_.size.width =
            std::max(made_.size.width, x_ + (visible == length ? room.width : width_of(begin, visible, style)));
        x_ += room.width;
        ascent_ = std::max(ascent_, room.ascent);
        descent_ = std::max(descent_, room.descent);
    }

    /// Puts the line's pieces on its base line. An empty line is as high as its style.
    void end_line(const text_style& style)
    {
        if (first_ == made_.pieces.size()) {
            const piece_extent room = measure_(u" ", style);
            ascent_ = room.ascent;
            descent_ = room.descent;
        }
        for (; first_ < made_.pieces.size(); ++first_)
            made_.pieces[first_].place.y += top_ + ascent_;
        top_ += ascent_ + descent_;
        x_ = ascent_ = descent_ = 0;
    }

    std::u16string_view text_;
    int width_;
    const piece_measure& measure_;
    text_flow made_;
    std::size_t first_ = 0; ///< piece of the present line
    int x_ = 0;
    int top_ = 0;
    int ascent_ = 0;
    int descent_ = 0;
};

} // namespace

text_flow flow_text(const rich_text& text, int width, const piece_measure& measure)
{
    return line_breaker(text, width, measure).run(text.runs);
}

} // namespace girder::ui
