#include "localisation/language_pack.h"

#include "localisation/little_endian.h"
#include "localisation/pack_name_hash.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

namespace tidelink {

namespace {

constexpr std::array<std::uint8_t, 16> signature = {0x91, 0x58, 0x27, 0xFD, 0x72, 0xA1, 0xC1, 0x4C,
                                                    0x8A, 0xBA, 0x56, 0x4E, 0xFC, 0x98, 0xDD, 0x21};

/// What follows the signature: the number of modules, then for each of them the hash of its name and the signed offset
/// of its pack from the start of the file, sorted by hash.
class directory {
public:
    /// Empty when it is not all there.
    explicit directory(std::span<const std::byte> file) noexcept
    {
        if (file.size() < entries_at)
            return;
        const auto count = load_number<std::uint32_t>(file.data() + signature.size());
        is_whole_ = count <= (file.size() - entries_at) / entry_size;
        if (is_whole_)
            entries_ = file.subspan(entries_at, count * entry_size);
    }

    bool is_whole() const noexcept { return is_whole_; }
    std::size_t size() const noexcept { return entries_.size() / entry_size; }
    std::size_t end() const noexcept { return entries_at + entries_.size(); }

    std::uint32_t hash(std::size_t index) const noexcept
    {
        return load_number<std::uint32_t>(entries_.data() + index * entry_size);
    }

    std::int32_t offset(std::size_t index) const noexcept
    {
        return load_number<std::int32_t>(entries_.data() + index * entry_size + offset_in_entry);
    }

    /// The first entry whose hash is not less; size() when there is none.
    std::size_t lower_bound(std::uint32_t wanted) const noexcept
    {
        std::size_t first = 0;
        for (std::size_t range = size(); range > 0;) {
            const std::size_t half = range / 2;
            if (hash(first + half) < wanted) {
                first += half + 1;
                range -= half + 1;
            } else {
                range = half;
            }
        }
        return first;
    }

private:
    static constexpr std::size_t entries_at = signature.size() + sizeof(std::uint32_t);
    static constexpr std::size_t entry_size = 8;
    static constexpr std::size_t offset_in_entry = 4;

    std::span<const std::byte> entries_;
    bool is_whole_ = false;
};

} // namespace

bool is_language_pack(std::span<const std::byte> file) noexcept
{
    if (file.size() < signature.size() || std::memcmp(file.data(), signature.data(), signature.size()) != 0)
        return false;
    const directory modules(file);
    if (!modules.is_whole())
        return false;
    for (std::size_t index = 0; index < modules.size(); ++index)
        if (std::cmp_less(modules.offset(index), modules.end()) || std::cmp_greater(modules.offset(index), file.size()))
            return false;
    return true;
}

std::span<const std::byte> findModule(std::span<const std::byte> file, std::u16string_view module) noexcept
{
    const directory modules(file);
    const std::uint32_t wanted = module_name_hash(module);
    const std::size_t found = modules.lower_bound(wanted);
    if (found == modules.size() || modules.hash(found) != wanted)
        return {};
    const std::int32_t offset = modules.offset(found);
    if (offset < 0 || static_cast<std::size_t>(offset) > file.size())
        return {};
    return file.subspan(static_cast<std::size_t>(offset));
}

} // namespace tidelink
