#include "localisation/string_set.h"

#include <cstring>

namespace tidelink {

namespace {

// Of 16 slots, on average: one group in 40 is full. The spare groups keep small sets free of collisions.
constexpr std::size_t entries_in_group = 10;
constexpr std::size_t spare_groups = 16;

} // namespace

StringSet::StringSet(std::size_t entries)
    : capacity_(entries), groups_(entries / entries_in_group + spare_groups),
      tags_((groups_ + groups_searched) * group_size),
      slots_(std::make_unique_for_overwrite<StringEntry[]>(tags_.size()))
{}

StringSet::StringSet(const StringSet& other, std::size_t further)
    : StringSet(further > other.size_ ? other.size_ + further : other.capacity_)
{
    if (tags_.size() == other.tags_.size()) {
        size_ = other.size_;
        tags_ = other.tags_;
        std::memcpy(slots_.get(), other.slots_.get(), tags_.size() * sizeof(StringEntry));
        overflow_ = other.overflow_;
        return;
    }
    for (std::size_t slot = 0; slot < other.tags_.size(); ++slot) {
        if (other.tags_[slot] != free_tag)
            insert(other.slots_[slot]);
    }
    for (const auto& [id, entry] : other.overflow_)
        insert(entry);
}

StringEntry* StringSet::insert_further(StringEntry entry)
{
    const place at = place_of(entry.id());
    for (std::size_t group = at.group + 1; group < at.group + groups_searched; ++group) {
        const group_tags tags = load(group);
        if (StringEntry* const present = match(tags, group, at.tag, entry.id()))
            return present;
        if (const unsigned free = equal_tags(tags, free_tag); free != 0) {
            fill(group, free, at.tag, entry);
            return nullptr;
        }
    }
    const auto [present, inserted] = overflow_.emplace(entry.id(), entry);
    if (!inserted)
        return &present->second;
    ++size_;
    return nullptr;
}

const StringEntry* StringSet::find_further(std::uint32_t id) const noexcept
{
    const place at = place_of(id);
    for (std::size_t group = at.group + 1; group < at.group + groups_searched; ++group) {
        const group_tags tags = load(group);
        if (const StringEntry* const entry = match(tags, group, at.tag, id))
            return entry;
        if (equal_tags(tags, free_tag) != 0)
            return nullptr;
    }
    const auto found = overflow_.find(id);
    return found != overflow_.end() ? &found->second : nullptr;
}

} // namespace tidelink
