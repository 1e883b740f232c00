#include "localisation/string_layer.h"

#include <algorithm>
#include <array>
#include <bit>
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

} // namespace

std::optional<StringLayer> StringLayer::read(std::span<const std::byte> pack, pack_form form,
                                             const StringLayer* beneath)
{
    StringLayer layer;
    if (form == pack_form::with_signature && !take_signature(pack))
        return std::nullopt;
    if (!take_name(pack, layer.locale_name_) || !take_name(pack, layer.language_tag_) || !skip_extra(pack))
        return std::nullopt;
    if (!layer.read_entries(pack, beneath))
        return std::nullopt;
    if (beneath != nullptr)
        layer.insert_all_of(*beneath);
    return layer;
}

bool StringLayer::read_entries(std::span<const std::byte> rest, const StringLayer* beneath)
{
    std::uint32_t count = 0;
    if (!take(rest, count) || count > rest.size() / StringEntry::min_stored_size)
        return false;
    make_room(count + (beneath != nullptr ? beneath->entries_ : 0));
    for (; count > 0; --count) {
        const std::size_t size = StringEntry::stored_size(rest.data(), rest.size());
        if (size == 0)
            return false;
        const StringEntry entry(rest.data());
        const StringEntry* const replaced = beneath != nullptr ? beneath->find(entry.id()) : nullptr;
        if (replaced == nullptr || replaced->revision() == entry.revision())
            insert(entry);
        rest = rest.subspan(size);
    }
    return true;
}

void StringLayer::make_room(std::size_t entries)
{
    constexpr std::size_t min_homes = 16;
    constexpr int hash_bits = 32;
    const std::size_t homes = std::bit_ceil(std::max(entries + entries / 2, min_homes));
    shift_ = static_cast<unsigned>(std::max(hash_bits - std::countr_zero(homes), 0));
    slots_.resize(homes + probe_limit);
}

void StringLayer::insert(const StringEntry& entry)
{
    StringEntry* slot = &slots_[home(entry.id())];
    for (const StringEntry* const end = slot + probe_limit; slot != end; ++slot) {
        if (!*slot) {
            *slot = entry;
            ++entries_;
            return;
        }
        if (slot->id() == entry.id())
            return;
    }
    if (overflow_.emplace(entry.id(), entry).second)
        ++entries_;
}

void StringLayer::insert_all_of(const StringLayer& beneath)
{
    for (const StringEntry& slot : beneath.slots_) {
        if (slot)
            insert(slot);
    }
    for (const auto& [id, entry] : beneath.overflow_)
        insert(entry);
}

const StringEntry* StringLayer::find_overflown(std::uint32_t id) const noexcept
{
    const auto found = overflow_.find(id);
    return found != overflow_.end() ? &found->second : nullptr;
}

} // namespace tidelink
