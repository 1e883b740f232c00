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
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

using fmtkit::argument;
using fuzz::require;

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
        switch (source.ConsumeIntegralInRange(0, 7)) {
        case 0:
            return source.ConsumeIntegral<std::int32_t>();
        case 1:
            return source.ConsumeIntegral<std::uint32_t>();
        case 2:
            return source.ConsumeIntegral<std::int64_t>();
        case 3:
            return source.ConsumeIntegral<std::uint64_t>();
        case 4:
            return wide_texts.emplace_back(units_of(source.ConsumeRandomLengthString(longest_text)));
        case 5:
            return narrow_texts.emplace_back(source.ConsumeRandomLengthString(longest_text));
        case 6:
            return source.ConsumeBool();
        default:
            // Half of them near today.
            return source.ConsumeBool()
                       ? girder::file_time{source.ConsumeIntegral<std::int64_t>()}
                       : girder::file_time{girder::unix_epoch_ticks +
                                           source.ConsumeIntegral<std::uint32_t>() * girder::ticks_per_second};
        }
    }

    bool is_ascii() const
    {
        const auto in_range = [](auto unit) { return unit >= 0 && unit < 0x80; };
        return std::ranges::all_of(values, [&](const argument& value) {
            if (value.type() == argument::kind::wide_text)
                return std::ranges::all_of(value.wide_text(), in_range);
            return value.type() != argument::kind::narrow_text || std::ranges::all_of(value.narrow_text(), in_range);
        });
    }

    std::deque<std::u16string> wide_texts;
    std::deque<std::string> narrow_texts;
    std::vector<argument> values;
};

template <typename Char>
using compiled = std::optional<fmtkit::basic_compiled_format<Char>>;

template <typename Char>
compiled<Char> compile(std::basic_string_view<Char> text)
{
    try {
        return fmtkit::compile(text);
    } catch (const fmtkit::bad_extended_format_string&) {
        return std::nullopt;
    }
}

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

/// Rendering appends, and what it appends does not depend on what is there or on how much room there is.
template <typename Char>
std::basic_string<Char> render(const fmtkit::basic_compiled_format<Char>& format, std::span<const argument> arguments)
{
    std::basic_string<Char> fresh;
    fmtkit::render(fresh, format, arguments);
    std::basic_string<Char> longer(3, Char('#'));
    fmtkit::render(longer, format, arguments);
    require(longer == std::basic_string<Char>(3, Char('#')) + fresh);
    return fresh;
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
    const bool ascii = std::ranges::all_of(narrow_text, [](char unit) { return unit >= 0; });
    const std::u16string wide_text = ascii ? std::u16string(narrow_text.begin(), narrow_text.end()) //
                                           : units_of(narrow_text);

    const compiled<char> narrow = compile(std::string_view(narrow_text));
    const compiled<char16_t> wide = compile(std::u16string_view(wide_text));
    std::string narrow_result;
    std::u16string wide_result;
    if (narrow) {
        check_items(*narrow);
        narrow_result = render(*narrow, arguments.values);
    }
    if (wide) {
        check_items(*wide);
        wide_result = render(*wide, arguments.values);
    }
    if (!ascii)
        return 0;
    require(narrow.has_value() == wide.has_value());
    if (!narrow)
        return 0;
    require(std::ranges::equal(narrow->items(), wide->items()));
    if (arguments.is_ascii() && says_the_same_in_both(narrow->items()))
        require(std::ranges::equal(narrow_result, wide_result));
    return 0;
}
