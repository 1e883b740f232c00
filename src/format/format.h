#pragma once

#include "format/argument.h"
#include "format/compiled_format.h"
#include "format/literal_text.h"
#include "format/literals.h"

#include <array>
#include <cstddef>
#include <span>
#include <string>

namespace fmtkit {

/// Appends the rendered text to `out`. A missing argument renders as nothing. Where memory runs out, `out` keeps what
/// was appended so far.
/// \throws std::bad_alloc
void render(std::u16string& out, const basic_format_view<char16_t>& format, std::span<const argument> arguments);
/// The same in UTF-8; widths count bytes.
void render(std::string& out, const basic_format_view<char>& format, std::span<const argument> arguments);

/// The rendered text as a new string.
std::u16string rendered(const basic_format_view<char16_t>& format, std::span<const argument> arguments);
std::string rendered(const basic_format_view<char>& format, std::span<const argument> arguments);

/// Appends `arguments`, rendered by a format compiled at run time, to `out`.
template <typename Char, typename... Arguments>
void append(std::basic_string<Char>& out, const basic_compiled_format<Char>& format, const Arguments&... arguments)
{
    const std::array<argument, sizeof...(Arguments)> list{argument(arguments)...};
    render(out, format, list);
}

/// The same into a new string.
template <typename Char, typename... Arguments>
std::basic_string<Char> format(const basic_compiled_format<Char>& format, const Arguments&... arguments)
{
    const std::array<argument, sizeof...(Arguments)> list{argument(arguments)...};
    return rendered(format, list);
}

/// Appends `arguments`, rendered by a format known at build time (`u"..."_fmt`), to `out`.
template <details::fixed_text Text, typename... Arguments>
void append(std::basic_string<typename decltype(Text)::character>& out, const literal_format<Text>& format,
            const Arguments&... arguments)
{
    using renderer_type = details::literal_renderer<literal_format<Text>, decltype(details::typed(arguments))...>;
    if (renderer_type(details::typed(arguments)...).append_to(out))
        return;
    // Before the string grows, the result is measured: it may need less.
    const std::array<argument, sizeof...(Arguments)> list{argument(arguments)...};
    render(out, format, list);
}

/// The same into a new string.
template <details::fixed_text Text, typename... Arguments>
std::basic_string<typename decltype(Text)::character> format(const literal_format<Text>& /*format*/,
                                                             const Arguments&... arguments)
{
    using renderer_type = details::literal_renderer<literal_format<Text>, decltype(details::typed(arguments))...>;
    return renderer_type(details::typed(arguments)...).to_string();
}

} // namespace fmtkit
