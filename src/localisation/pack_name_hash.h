#pragma once

#include <cstdint>
#include <string_view>

namespace tidelink {

/// The hash by which packs name strings and modules: 32-bit FNV-1a over the code units of a key. Letters A to Z count
/// as a to z; of every unit only the low byte counts, sign-extended to 32 bits before it enters the hash.
constexpr std::uint32_t PackNameHash(std::u16string_view key) noexcept
{
    std::uint32_t hash = 0x811C9DC5;
    for (const char16_t unit : key) {
        const std::uint32_t folded = unit + (unit >= u'A' && unit <= u'Z' ? 0x20U : 0U);
        const std::uint32_t low = folded & 0xFFU;
        hash = (hash ^ (low | (low >= 0x80 ? 0xFFFFFF00U : 0U))) * 0x01000193U;
    }
    return hash;
}

/// A module's name without what stands before and at its first backslash.
constexpr std::u16string_view module_without_folder(std::u16string_view module) noexcept
{
    return module.substr(module.find(u'\\') + 1);
}

/// What the file format hashes for a module.
constexpr std::uint32_t module_name_hash(std::u16string_view module) noexcept
{
    return PackNameHash(module_without_folder(module));
}

} // namespace tidelink
