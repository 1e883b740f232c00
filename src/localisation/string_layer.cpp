#include "localisation/string_layer.h"

#include "localisation/placeholders.h"

#include <array>
#include <functional>
#include <utility>

namespace tidelink {

namespace {

constexpr std::array<std::uint8_t, 16> signature = {0x79, 0x2B, 0x13, 0xEF, 0xBB, 0x4F, 0xF7, 0x43,
                                                    0x84, 0x1A, 0x26, 0x0C, 0x00, 0xFF, 0x99, 0x29};

/// Takes a number off the front; false when it is not all there.
template <typename Number>
bool take(std::span<const std::byte>& rest, Number& number) noexcept
{
    if (rest.size() < sizeof number)
        return false;
    number = load_number<Number>(rest.data());
    rest = rest.subspan(sizeof number);
    return true;
}

bool take_signature(std::span<const std::byte>& rest) noexcept
{
    if (rest.size() < signature.size() || std::memcmp(rest.data(), signature.data(), signature.size()) != 0)
        return false;
    rest = rest.subspan(signature.size());
    return true;
}

/// 8-bit characters after their 16-bit number, followed by a null.
bool take_name(std::span<const std::byte>& rest, std::string_view& name) noexcept
{
    std::uint16_t length = 0;
    if (!take(rest, length) || rest.size() <= length || rest[length] != std::byte{0})
        return false;
    name = {reinterpret_cast<const char*>(rest.data()), length};
    rest = rest.subspan(length + std::size_t{1});
    return true;
}

bool skip_extra(std::span<const std::byte>& rest) noexcept
{
    std::uint8_t length = 0;
    if (!take(rest, length) || rest.size() < length)
        return false;
    rest = rest.subspan(length);
    return true;
}

bool is_stored_between(const std::byte* begin, const std::byte* end, const StringEntry& entry) noexcept
{
    return std::greater_equal<>()(entry.stored(), begin) && std::less<>()(entry.stored(), end);
}

/// The first byte of an opening brace, or `end`. Other numbers and letters have that byte, too.
const std::byte* next_brace(const std::byte* begin, const std::byte* end) noexcept
{
    const void* const found = std::memchr(begin, u'{', static_cast<std::size_t>(end - begin));
    return found != nullptr ? static_cast<const std::byte*>(found) : end;
}

/// Whether an entry may stand for the one beneath it. Takes a copy, so that the caller can keep its entry in registers.
bool may_replace(StringEntry entry, const StringEntry& replaced, pack_form form, bool has_brace)
{
    if (form == pack_form::with_signature)
        return entry.revision() == replaced.revision();
    return entry.is_like(replaced) && (!has_brace || placeholders_fit(entry, replaced));
}

} // namespace

std::optional<StringLayer> StringLayer::read(std::span<const std::byte> pack, pack_form form,
                                             const StringLayer* beneath)
{
    std::span<const std::byte> rest = pack;
    std::string_view locale_name;
    std::string_view language_tag;
    std::uint32_t count = 0;
    if (form == pack_form::with_signature && !take_signature(rest))
        return std::nullopt;
    if (!take_name(rest, locale_name) || !take_name(rest, language_tag) || !skip_extra(rest) || !take(rest, count))
        return std::nullopt;
    if (count > rest.size() / StringEntry::min_stored_size)
        return std::nullopt;

    std::optional<StringLayer> layer = StringLayer(
        locale_name, language_tag, beneath != nullptr ? StringSet(beneath->entries_, count) : StringSet(count));
    const std::byte* stored = rest.data();
    const std::byte* const end = stored + rest.size();
    // Most texts have no placeholders: looking for braces in all of the pack at once is faster than in each text.
    const std::byte* brace = form == pack_form::bare ? next_brace(stored, end) : end;
    for (; count > 0; --count) {
        const std::size_t size = StringEntry::stored_size(stored, static_cast<std::size_t>(end - stored));
        if (size == 0)
            return std::nullopt;
        const StringEntry entry(stored);
        StringEntry* const present = layer->entries_.insert(entry);
        stored += size;
        const bool has_brace = brace < stored;
        if (has_brace)
            brace = next_brace(stored, end);
        // The packs beneath may lie behind this one in the same file.
        const bool is_from_beneath = present != nullptr && !is_stored_between(rest.data(), stored, *present);
        if (is_from_beneath && may_replace(entry, *present, form, has_brace))
            *present = entry;
    }
    return layer;
}

} // namespace tidelink
