#include "ui/rich_text.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

namespace girder::ui {
namespace {

constexpr std::u16string_view opening = u"[[[";
constexpr std::u16string_view closing = u"]]]";
/// What no address of a link holds.
constexpr std::u16string_view address_ends = u"|[]\n";

bool is_digit(char16_t unit) noexcept
{
    return unit >= u'0' && unit <= u'9';
}

/// What stands at one place of the markup.
struct token {
    enum class kind : std::uint8_t { text, bold, size, link, whole_link, close };

    kind what = kind::text;
    std::u16string_view source; ///< as it stands
    std::u16string_view shown;  ///< of a text: what is shown; of a link: its address
    int percent = 0;
    bool paired = false; ///< of an opening and a closing mark: it has its partner
};

/// "s:120:" at the start of what follows the opening brackets.
std::optional<token> size_mark(std::u16string_view source, std::u16string_view rest)
{
    constexpr int smallest = 25;
    constexpr int largest = 400;
    constexpr std::size_t most_digits = 4;
    if (!rest.starts_with(u"s:"))
        return std::nullopt;
    int percent = 0;
    std::size_t at = 2;
    for (; at < rest.size() && at < 2 + most_digits && is_digit(rest[at]); ++at)
        percent = percent * 10 + (rest[at] - u'0');
    if (at == rest.size() || rest[at] != u':' || percent < smallest || percent > largest)
        return std::nullopt;
    return token{.what = token::kind::size,
                 .source = source.substr(0, opening.size() + at + 1),
                 .shown = {},
                 .percent = percent};
}

/// "h", the address and what ends it. The whole link is one token when it shows its address.
std::optional<token> link_mark(std::u16string_view source, std::u16string_view rest)
{
    if (!rest.starts_with(u"h"))
        return std::nullopt;
    const std::size_t end = rest.find_first_of(address_ends);
    if (end == std::u16string_view::npos || !is_safe_address(rest.substr(1, end - 1)))
        return std::nullopt;
    const bool with_text = rest[end] == u'|';
    if (!with_text && !rest.substr(end).starts_with(closing))
        return std::nullopt;
    return token{.what = with_text ? token::kind::link : token::kind::whole_link,
                 .source = source.substr(0, opening.size() + end + (with_text ? 1 : closing.size())),
                 .shown = rest.substr(1, end - 1)};
}

/// The mark that begins here, if one does.
std::optional<token> mark_at(std::u16string_view source)
{
    if (source.starts_with(closing))
        return token{.what = token::kind::close, .source = closing, .shown = {}};
    if (!source.starts_with(opening) || source.size() == opening.size())
        return std::nullopt;
    const std::u16string_view rest = source.substr(opening.size());
    if (rest.front() == u'(' || rest.front() == u')')
        return token{.source = source.substr(0, opening.size() + 1), .shown = rest.front() == u'(' ? u"[" : u"]"};
    if (rest.front() == u'b')
        return token{.what = token::kind::bold, .source = source.substr(0, opening.size() + 1), .shown = {}};
    if (const auto size = size_mark(source, rest))
        return size;
    return link_mark(source, rest);
}

std::vector<token> tokens_of(std::u16string_view markup)
{
    std::vector<token> all;
    while (!markup.empty()) {
        std::optional<token> next = mark_at(markup);
        if (!next) {
            const std::u16string_view plain = markup.substr(0, markup.find_first_of(u"[]", 1));
            next = token{.source = plain, .shown = plain};
        }
        markup.remove_prefix(next->source.size());
        all.push_back(*next);
    }
    return all;
}

bool opens(const token& mark) noexcept
{
    return mark.what == token::kind::bold || mark.what == token::kind::size || mark.what == token::kind::link;
}

/// Finds the partner of every mark that has one. A link inside a link is no mark.
void pair_up(std::vector<token>& tokens)
{
    std::vector<token*> open;
    for (token& each : tokens) {
        if (opens(each)) {
            open.push_back(&each);
        } else if (each.what == token::kind::close && !open.empty()) {
            each.paired = true;
            open.back()->paired = true;
            open.pop_back();
        }
    }
}

/// Puts the text together, leaving out carriage returns and nulls: neither can be shown.
class builder {
public:
    void add(const token& next)
    {
        switch (next.what) {
        case token::kind::text:
            append(next.shown);
            break;
        case token::kind::whole_link:
            add_whole_link(next);
            break;
        case token::kind::close:
            if (next.paired)
                close();
            else
                append(next.source);
            break;
        default:
            if (next.paired)
                open(next);
            else
                append(next.source);
        }
    }

    rich_text take() { return std::move(made_); }

private:
    void open(const token& mark)
    {
        outer_.push_back(style_);
        if (mark.what == token::kind::bold)
            style_.bold = true;
        else if (mark.what == token::kind::size)
            style_.percent = mark.percent;
        else if (style_.link < 0)
            style_.link = new_link(mark.shown);
    }

    /// A link without any text would be out of reach: it shows its address.
    void close()
    {
        const bool ends_link = style_.link >= 0 && outer_.back().link < 0;
        if (ends_link && (made_.runs.empty() || made_.runs.back().style.link != style_.link))
            append(made_.addresses[static_cast<std::size_t>(style_.link)]);
        style_ = outer_.back();
        outer_.pop_back();
    }

    void add_whole_link(const token& link)
    {
        const text_style before = style_;
        if (style_.link < 0)
            style_.link = new_link(link.shown);
        append(link.shown);
        style_ = before;
    }

    int new_link(std::u16string_view address)
    {
        made_.addresses.emplace_back(address);
        return static_cast<int>(made_.addresses.size()) - 1;
    }

    void append(std::u16string_view shown)
    {
        const std::size_t begin = made_.text.size();
        for (const char16_t unit : shown)
            if (unit != u'\r' && unit != u'\0')
                made_.text += unit;
        const std::size_t length = made_.text.size() - begin;
        if (length == 0)
            return;
        if (!made_.runs.empty() && made_.runs.back().style == style_)
            made_.runs.back().length += length;
        else
            made_.runs.push_back({.begin = begin, .length = length, .style = style_});
    }

    rich_text made_;
    text_style style_;
    std::vector<text_style> outer_;
};

} // namespace

std::u16string rich_text::link_text(int link) const
{
    std::u16string shown;
    for (const text_run& run : runs)
        if (run.style.link == link)
            shown.append(text, run.begin, run.length);
    return shown;
}

rich_text parse_markup(std::u16string_view markup)
{
    std::vector<token> tokens = tokens_of(markup);
    pair_up(tokens);
    builder text;
    for (const token& each : tokens)
        text.add(each);
    return text.take();
}

std::u16string escaped_markup(std::u16string_view text)
{
    std::u16string markup;
    for (const char16_t unit : text) {
        if (unit == u'[')
            markup += u"[[[(";
        else if (unit == u']')
            markup += u"[[[)";
        else
            markup += unit;
    }
    return markup;
}

std::u16string link_markup(std::u16string_view address, std::u16string_view text)
{
    if (!is_safe_address(address) || address.find_first_of(address_ends) != std::u16string_view::npos)
        return {};
    std::u16string markup(opening);
    return markup.append(u"h").append(address).append(u"|").append(escaped_markup(text)).append(closing);
}

bool is_safe_address(std::u16string_view address) noexcept
{
    constexpr std::u16string_view schemes[] = {u"https://", u"mailto:"};
    const auto lower = [](char16_t unit) {
        return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
    };
    const auto is_visible = [](char16_t unit) { return unit > u' ' && unit < 0x7F && unit != u'"'; };
    const auto begins = [&](std::u16string_view scheme) {
        return address.size() > scheme.size() &&
               std::ranges::equal(scheme, address.substr(0, scheme.size()), {}, {}, lower);
    };
    return std::ranges::any_of(schemes, begins) && std::ranges::all_of(address, is_visible);
}

} // namespace girder::ui
