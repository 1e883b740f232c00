#pragma once

#include "localisation/string_entry.h"

#include <emmintrin.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace tidelink {

/// Entries of string packs, found by their ids. The first entry for an id stays.
///
/// A hash table of groups of 16 slots. The tags of a group, one byte of each entry's hash, stand apart from the
/// entries: a search compares them all at once (SSE2, which every x86-64 processor has) and then looks at one entry as
/// a rule, the right one. An entry whose group is full goes to one of the next three, and when these are full into a
/// map, so that no choice of ids makes a search long.
class StringSet {
public:
    /// \param entries  how many there will be; the more these are exceeded, the slower the set gets
    explicit StringSet(std::size_t entries);

    /// The entries of another set, with room for others.
    /// \param further  how many entries are going to be inserted; most of them should have ids that are there already
    ///                 when there are no more of them than entries
    StringSet(const StringSet& other, std::size_t further);

    /// \return null when the entry was inserted; else the one that has its id already and stays
    StringEntry* insert(StringEntry entry)
    {
        const place at = place_of(entry.id());
        const group_tags tags = load(at.group);
        const unsigned free = equal_tags(tags, free_tag);
        if (StringEntry* const present = match(tags, at.group, at.tag, entry.id()))
            return present;
        if (free == 0) [[unlikely]]
            return insert_further(entry);
        fill(at.group, free, at.tag, entry);
        return nullptr;
    }

    /// Null when there is none. Lives as long as the set.
    const StringEntry* find(std::uint32_t id) const noexcept
    {
        const place at = place_of(id);
        const group_tags tags = load(at.group);
        if (const StringEntry* const entry = match(tags, at.group, at.tag, id)) [[likely]]
            return entry;
        return equal_tags(tags, free_tag) != 0 ? nullptr : find_further(id);
    }

private:
    using group_tags = __m128i;
    static constexpr std::size_t group_size = sizeof(group_tags);
    static constexpr std::size_t groups_searched = 4;
    static constexpr std::uint8_t free_tag = 0;

    /// Where the search for an id starts, and what it looks for.
    struct place {
        std::size_t group;
        std::uint8_t tag;
    };

    /// Multiplicative hashing: the top of the product chooses the group, its lowest byte is the tag.
    place place_of(std::uint32_t id) const noexcept
    {
        const std::uint32_t hash = id * 0x9E3779B1U;
        const auto group = static_cast<std::size_t>((std::uint64_t{hash} * groups_) >> 32U);
        const auto low = static_cast<std::uint8_t>(hash);
        return {group, static_cast<std::uint8_t>(low + (low == free_tag ? 1 : 0))};
    }

    group_tags load(std::size_t group) const noexcept
    {
        return _mm_loadu_si128(reinterpret_cast<const group_tags*>(&tags_[group * group_size]));
    }

    /// One bit for each slot of a group, set where the tag is the given one.
    static unsigned equal_tags(group_tags tags, std::uint8_t tag) noexcept
    {
        const group_tags wanted = _mm_set1_epi32(static_cast<int>(tag * 0x01010101U));
        return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(tags, wanted)));
    }

    StringEntry* match(group_tags tags, std::size_t group, std::uint8_t tag, std::uint32_t id) const noexcept
    {
        for (unsigned equal = equal_tags(tags, tag); equal != 0; equal &= equal - 1) {
            StringEntry& entry = slots_[group * group_size + static_cast<unsigned>(std::countr_zero(equal))];
            if (entry.id() == id) [[likely]]
                return &entry;
        }
        return nullptr;
    }

    void fill(std::size_t group, unsigned free, std::uint8_t tag, StringEntry entry)
    {
        const std::size_t slot = group * group_size + static_cast<unsigned>(std::countr_zero(free));
        tags_[slot] = tag;
        slots_[slot] = entry;
        ++size_;
    }

    // The groups behind the first one, and the map.
    StringEntry* insert_further(StringEntry entry);
    [[gnu::pure]] const StringEntry* find_further(std::uint32_t id) const noexcept;

    std::size_t size_ = 0;
    std::size_t capacity_; ///< what the set was made for
    std::uint64_t groups_;
    std::vector<std::uint8_t> tags_;
    std::unique_ptr<StringEntry[]> slots_; // those with a tag are filled, the others have no content
    std::map<std::uint32_t, StringEntry> overflow_;
};

} // namespace tidelink
