#include "format/compile.h"

#include "format/parser.h"

#include <algorithm>

namespace fmtkit {
namespace {

template <typename Char>
basic_compiled_format<Char> compile_text(std::basic_string_view<Char> text)
{
    std::vector<FormatItem> items;
    items.reserve(2 * static_cast<std::size_t>(std::ranges::count(text, Char('{'))) + 1);
    details::parse_format(text, [&items](const FormatItem& item) { items.push_back(item); });
    return {text, std::move(items)};
}

} // namespace

namespace details {

void format_text_ends_inside_a_specifier()
{
    throw bad_extended_format_string();
}

void format_has_an_unknown_specifier_letter()
{
    throw bad_extended_format_string();
}

void format_condition_is_none_of_less_bar_greater()
{
    throw bad_extended_format_string();
}

void format_time_has_no_opening_parenthesis()
{
    throw bad_extended_format_string();
}

void format_time_pattern_has_a_closing_brace()
{
    throw bad_extended_format_string();
}

void format_fill_is_more_than_one_unit()
{
    throw bad_extended_format_string();
}

} // namespace details

CompiledFormat compile(std::u16string_view text)
{
    return compile_text(text);
}

NarrowCompiledFormat compile(std::string_view text)
{
    return compile_text(text);
}

} // namespace fmtkit
