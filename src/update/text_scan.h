#pragma once

#include <emmintrin.h>

#include <array>
#include <bit>
#include <cstddef>
#include <string>
#include <string_view>

namespace girder::json {

/// A stretch of a JSON text without quotes and backslashes.
struct plain_stretch {
    const char* end; ///< at the quote or backslash that ends it, or at the end of the text
    bool ascii;
};

/// Looks at 16 bytes at a time, as every 64-bit processor of this family can (SSE2).
inline plain_stretch scan_plain(const char* at, const char* end) noexcept
{
    constexpr int block = 16;
    const __m128i quotes = _mm_set1_epi8('"');
    const __m128i backslashes = _mm_set1_epi8('\\');
    unsigned high_bits = 0;
    while (end - at >= block) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const __m128i found = _mm_or_si128(_mm_cmpeq_epi8(bytes, quotes), _mm_cmpeq_epi8(bytes, backslashes));
        const auto stops = static_cast<unsigned>(_mm_movemask_epi8(found));
        const auto high = static_cast<unsigned>(_mm_movemask_epi8(bytes));
        if (stops != 0) {
            const unsigned before_stop = (stops & (0 - stops)) - 1;
            high_bits |= high & before_stop;
            return {.end = at + std::countr_zero(stops), .ascii = high_bits == 0};
        }
        high_bits |= high;
        at += block;
    }
    for (; at != end && *at != '"' && *at != '\\'; ++at)
        high_bits |= static_cast<unsigned char>(*at) & 0x80U;
    return {.end = at, .ascii = high_bits == 0};
}

/// ASCII in UTF-16.
/// \param end  of what may be read behind the text
inline std::u16string widen_ascii(std::string_view text, const char* end)
{
    constexpr std::ptrdiff_t block = 16;
    constexpr std::ptrdiff_t longest = 2 * block;
    if (text.size() > longest || end - text.data() < longest)
        return {text.begin(), text.end()};
    // Whole blocks, whatever the size: a loop over single bytes ends where the processor does not expect it.
    std::array<char16_t, longest> units;
    for (std::ptrdiff_t at = 0; at < longest; at += block) {
        const __m128i narrow = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + at));
        auto* const wide = reinterpret_cast<__m128i*>(units.data() + at);
        _mm_storeu_si128(wide, _mm_unpacklo_epi8(narrow, _mm_setzero_si128()));
        _mm_storeu_si128(wide + 1, _mm_unpackhi_epi8(narrow, _mm_setzero_si128()));
    }
    return {units.data(), text.size()};
}

} // namespace girder::json
