#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace fmtkit::details {

template <typename Block>
inline void copy_block(char* out, const char* bytes) noexcept
{
    Block block;
    std::memcpy(&block, bytes, sizeof block);
    std::memcpy(out, &block, sizeof block);
}

/// Two blocks that overlap in the middle: any size from one block to two, without a loop.
template <typename Block>
inline void copy_ends(char* out, const char* bytes, std::size_t size) noexcept
{
    copy_block<Block>(out, bytes);
    copy_block<Block>(out + size - sizeof(Block), bytes + size - sizeof(Block));
}

/// What the processor moves at once.
using block_of_16 [[gnu::vector_size(16)]] = char;

/// Copies a text. Most texts in formats are short, for which calling memcpy would take longer than the copying.
/// \return the end of the copy
template <typename Char>
inline Char* copy_text(Char* out, std::basic_string_view<Char> text) noexcept
{
    constexpr std::size_t block = sizeof(block_of_16);
    const std::size_t size = text.size() * sizeof(Char);
    auto* const to = reinterpret_cast<char*>(out);
    const auto* const from = reinterpret_cast<const char*>(text.data());
    if (size > 16 * block) [[unlikely]] {
        std::memcpy(to, from, size);
    } else if (size >= block) {
        for (std::size_t done = 0; done + block < size; done += block)
            copy_block<block_of_16>(to + done, from + done);
        copy_block<block_of_16>(to + size - block, from + size - block);
    } else if (size >= 8) {
        copy_ends<std::uint64_t>(to, from, size);
    } else if (size >= 4) {
        copy_ends<std::uint32_t>(to, from, size);
    } else if (size >= 2) {
        copy_ends<std::uint16_t>(to, from, size);
    } else if (size == 1) {
        *to = *from;
    }
    return out + text.size();
}

} // namespace fmtkit::details
