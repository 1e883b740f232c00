#include "localisation/language_pack.h"

#include "localisation/little_endian.h"
#include "localisation/pack_name_hash.h"

#include <cstdint>

namespace tidelink {

namespace {

// After the signature the number of modules, then for each of them the hash of its name and the signed offset of its
// pack from the start of the file, sorted by hash.
constexpr std::size_t module_count_at = 16;
constexpr std::size_t directory_at = 20;
constexpr std::size_t directory_entry_size = 8;
constexpr std::size_t offset_in_entry = 4;

} // namespace

std::span<const std::byte> findModule(std::span<const std::byte> file, std::u16string_view module) noexcept
{
    if (file.size() < directory_at)
        return {};
    const std::span<const std::byte> directory = file.subspan(directory_at);
    const auto count = load_number<std::uint32_t>(file.data() + module_count_at);
    if (count > directory.size() / directory_entry_size)
        return {};

    const auto hash_at = [&](std::size_t index) {
        return load_number<std::uint32_t>(directory.data() + index * directory_entry_size);
    };
    const std::uint32_t wanted = module_name_hash(module);
    std::size_t first = 0;
    for (std::size_t range = count; range > 0;) {
        const std::size_t half = range / 2;
        if (hash_at(first + half) < wanted) {
            first += half + 1;
            range -= half + 1;
        } else {
            range = half;
        }
    }
    if (first == count || hash_at(first) != wanted)
        return {};
    const auto offset = load_number<std::int32_t>(directory.data() + first * directory_entry_size + offset_in_entry);
    if (offset < 0 || static_cast<std::size_t>(offset) > file.size())
        return {};
    return file.subspan(static_cast<std::size_t>(offset));
}

} // namespace tidelink
