#pragma once

#include "format/argument.h"
#include "format/compiled_format.h"

#include <span>
#include <string>
#include <type_traits>

namespace fmtkit {

/// Appends the rendered text to `out`. A missing argument renders as nothing. Where memory runs out, `out` keeps what
/// was appended so far.
/// \throws std::bad_alloc
void render(std::u16string& out, const basic_format_view<char16_t>& format, std::span<const argument> arguments);
/// The same in UTF-8; widths count bytes.
void render(std::string& out, const basic_format_view<char>& format, std::span<const argument> arguments);

namespace details {

template <typename Format>
struct character_of {
    using type = typename Format::character;
};
template <typename Char>
struct character_of<basic_compiled_format<Char>> {
    using type = Char;
};
template <typename Char>
struct character_of<basic_format_view<Char>> {
    using type = Char;
};

} // namespace details

/// Appends `arguments`, rendered by `format`, to `out`.
/// \param format  a literal (`u"..."_fmt`) or the result of compile()
template <typename Format, typename... Arguments>
void append(std::basic_string<typename details::character_of<Format>::type>& out, const Format& format,
            const Arguments&... arguments)
{
    const basic_format_view<typename details::character_of<Format>::type> view = format;
    if constexpr (sizeof...(Arguments) == 0) {
        render(out, view, {});
    } else {
        const argument list[] = {argument(arguments)...};
        render(out, view, list);
    }
}

/// The rendered text as a new string.
template <typename Format, typename... Arguments>
std::basic_string<typename details::character_of<Format>::type> format(const Format& format_used,
                                                                       const Arguments&... arguments)
{
    std::basic_string<typename details::character_of<Format>::type> out;
    append(out, format_used, arguments...);
    return out;
}

} // namespace fmtkit
