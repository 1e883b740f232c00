#include "localisation/placeholders.h"

#include "format/compile.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace tidelink {

namespace {

constexpr std::size_t longest_format = 1'024;

/// Looks at bytes, because a text may stand at an odd address.
bool has_brace(std::u16string_view text) noexcept
{
    const auto* at = reinterpret_cast<const unsigned char*>(text.data());
    const unsigned char* const end = at + text.size() * sizeof(char16_t);
    while (at != end) {
        const auto* const found =
            static_cast<const unsigned char*>(std::memchr(at, u'{', static_cast<std::size_t>(end - at)));
        if (found == nullptr)
            return false;
        if ((end - found) % 2 == 0 && found[1] == 0)
            return true;
        at = found + 1;
    }
    return false;
}

/// The format of a text in memory of its own, at an address for its type.
struct compiled_text {
    explicit compiled_text(std::u16string_view stored) : text(stored.size(), u'\0'), format(copied(stored)) {}

    bool has_argument(std::uint16_t index) const
    {
        return std::ranges::any_of(format.items(), [index](const fmtkit::FormatItem& item) {
            return (item.flags & fmtkit::flag_literal) == 0 && item.argIndex == index;
        });
    }

    std::u16string text;
    fmtkit::CompiledFormat format;

private:
    fmtkit::CompiledFormat copied(std::u16string_view stored)
    {
        std::memcpy(text.data(), reinterpret_cast<const std::byte*>(stored.data()), stored.size() * sizeof(char16_t));
        return fmtkit::compile(text);
    }
};

bool fits(std::u16string_view translation, std::u16string_view replaced)
try {
    if (!has_brace(translation))
        return true;
    if (std::max(translation.size(), replaced.size()) > longest_format)
        return false;
    const compiled_text allowed(replaced);
    return std::ranges::all_of(compiled_text(translation).format.items(), [&](const fmtkit::FormatItem& item) {
        return (item.flags & fmtkit::flag_literal) != 0 || allowed.has_argument(item.argIndex);
    });
} catch (const fmtkit::bad_extended_format_string&) {
    return false;
}

} // namespace

bool placeholders_fit(const StringEntry& translation, const StringEntry& replaced)
{
    if (translation.is_list() != replaced.is_list())
        return false;
    if (!translation.is_list())
        return fits(translation.text(), replaced.text());
    bool all_fit = true;
    translation.for_each_item(
        [&](std::uint32_t index, std::u16string_view item) { all_fit = all_fit && fits(item, replaced.item(index)); });
    return all_fit;
}

} // namespace tidelink
