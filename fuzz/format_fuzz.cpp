// Any text compiled as a format and rendered with any arguments: nothing outside the texts is touched, and what both
// character types can say they say alike.

#include "format/compile.h"
#include "format/error.h"
#include "format/format.h"
#include "require.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

using fmtkit::argument;
using fuzz::require;

constexpr auto is_ascii = [](const auto& text) {
    return std::ranges::all_of(text, [](auto unit) { return unit >= 0 && unit < 0x80; });
};

std::u16string units_of(std::string_view bytes)
{
    std::u16string units(bytes.size() / 2, u'\0');
    std::memcpy(units.data(), bytes.data(), units.size() * 2);
    return units;
}

/// Arguments and the texts that they refer to.
struct argument_list {
    explicit argument_list(FuzzedDataProvider& source)
    {
        for (auto left = source.ConsumeIntegralInRange(0, 7); left > 0; --left)
            values.push_back(draw(source));
    }

    argument draw(FuzzedDataProvider& source)
    {
        constexpr std::size_t longest_text = 255;
        const std::function<argument()> kinds[] = {
            [&] { return source.ConsumeIntegral<std::int32_t>(); },
            [&] { return source.ConsumeIntegral<std::uint32_t>(); },
            [&] { return source.ConsumeIntegral<std::int64_t>(); },
            [&] { return source.ConsumeIntegral<std::uint64_t>(); },
            [&] { return argument(wide_texts.emplace_back(units_of(source.ConsumeRandomLengthString(longest_text)))); },
            [&] { return argument(narrow_texts.emplace_back(source.ConsumeRandomLengthString(longest_text))); },
            [&] { return source.ConsumeBool(); },
            [&] {
                if (source.ConsumeBool())
                    return girder::file_time{source.ConsumeIntegral<std::int64_t>()};
                const std::int64_t near_today = source.ConsumeIntegral<std::uint32_t>() * girder::ticks_per_second;
                return girder::file_time{girder::unix_epoch_ticks + near_today};
            },
        };
        return kinds[source.ConsumeIntegralInRange(0, 7)]();
    }

    std::deque<std::u16string> wide_texts;
    std::deque<std::string> narrow_texts;
    std::vector<argument> values;
};

/// Literals and time patterns lie in the text, in order, and there are no more items than the braces allow.
template <typename Char>
void check_items(const fmtkit::basic_compiled_format<Char>& format)
{
    const auto text = format.text();
    require(format.items().size() <= 2 * static_cast<std::size_t>(std::ranges::count(text, Char('{'))) + 1);
    std::int32_t position = 0;
    for (const fmtkit::FormatItem& item : format.items()) {
        if ((item.flags & (fmtkit::flag_literal | fmtkit::flag_time)) == 0)
            continue;
        require(position <= item.begin && item.begin <= item.end);
        position = item.end;
    }
    require(static_cast<std::size_t>(position) <= text.size());
}

template <typename Char>
struct outcome {
    std::vector<fmtkit::FormatItem> items;
    std::basic_string<Char> text;
};

/// Rendering appends, and what it appends does not depend on what is there or on how much room there is.
/// \return empty when the text is no format
template <typename Char>
std::optional<outcome<Char>> render(std::basic_string_view<Char> text, std::span<const argument> arguments)
{
    std::optional<fmtkit::basic_compiled_format<Char>> format;
    if (!fuzz::succeeds<fmtkit::bad_extended_format_string>([&] { format = fmtkit::compile(text); }))
        return std::nullopt;
    check_items(*format);
    std::basic_string<Char> fresh;
    fmtkit::render(fresh, *format, arguments);
    std::basic_string<Char> longer(3, Char('#'));
    fmtkit::render(longer, *format, arguments);
    require(longer == std::basic_string<Char>(3, Char('#')) + fresh);
    return outcome<Char>{{format->items().begin(), format->items().end()}, fresh};
}

/// What depends on the character type: the length of what is not ASCII, such as the mark of a cut.
bool says_the_same_in_both(std::span<const fmtkit::FormatItem> items)
{
    return std::ranges::none_of(items, [](const fmtkit::FormatItem& item) {
        return (item.flags & (fmtkit::flag_character | fmtkit::flag_ellipsis)) != 0;
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider source(data, size);
    const argument_list arguments(source);
    const std::string narrow_text = source.ConsumeRemainingBytesAsString();
    const bool ascii = is_ascii(narrow_text);
    const std::u16string wide_text = ascii ? std::u16string(narrow_text.begin(), narrow_text.end()) //
                                           : units_of(narrow_text);
    const auto narrow = render(std::string_view(narrow_text), arguments.values);
    const auto wide = render(std::u16string_view(wide_text), arguments.values);
    require(!ascii || narrow.has_value() == wide.has_value());
    if (!ascii || !narrow)
        return 0;
    require(narrow->items == wide->items);
    if (says_the_same_in_both(narrow->items) && std::ranges::all_of(arguments.wide_texts, is_ascii) &&
        std::ranges::all_of(arguments.narrow_texts, is_ascii))
        require(std::ranges::equal(narrow->text, wide->text));
    return 0;
}
