#pragma once

#include "base/file_time.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace fmtkit {

/// One argument of a format: a number of 32 or 64 bits, a text, a condition, or a point in time. Made implicitly from
/// the caller's value; texts are referred to and have to live for the call.
class argument {
public:
    enum class kind : std::uint8_t { signed_number, unsigned_number, wide_text, narrow_text, condition, time };

    // NOLINTBEGIN(google-explicit-constructor): the typed argument list of a call is written without wrapping
    template <std::signed_integral Number>
        requires(sizeof(Number) <= 8)
    constexpr argument(Number value) noexcept
        : kind_(kind::signed_number), narrow_(sizeof(Number) < 8),
          bits_(static_cast<std::uint64_t>(std::int64_t{value}))
    {}
    template <std::unsigned_integral Number>
        requires(sizeof(Number) <= 8 && !std::same_as<Number, bool>)
    constexpr argument(Number value) noexcept : kind_(kind::unsigned_number), narrow_(sizeof(Number) < 8), bits_(value)
    {}
    constexpr argument(std::same_as<bool> auto value) noexcept : kind_(kind::condition), bits_(value ? 1 : 0) {}
    constexpr argument(girder::file_time value) noexcept
        : kind_(kind::time), bits_(static_cast<std::uint64_t>(value.ticks))
    {}
    constexpr argument(std::u16string_view value) noexcept
        : kind_(kind::wide_text), wide_(value.data()), size_(value.size())
    {}
    constexpr argument(const std::u16string& value) noexcept : argument(std::u16string_view(value)) {}
    constexpr argument(const char16_t* value) noexcept : argument(std::u16string_view(value)) {}
    /// UTF-8.
    constexpr argument(std::string_view value) noexcept
        : kind_(kind::narrow_text), bytes_(value.data()), size_(value.size())
    {}
    constexpr argument(const std::string& value) noexcept : argument(std::string_view(value)) {}
    constexpr argument(const char* value) noexcept : argument(std::string_view(value)) {}
    // NOLINTEND(google-explicit-constructor)

    constexpr kind type() const noexcept { return kind_; }
    constexpr bool is_number() const noexcept { return kind_ == kind::signed_number || kind_ == kind::unsigned_number; }
    /// Of a condition its value; everything else counts as true.
    constexpr bool is_true() const noexcept { return kind_ != kind::condition || bits_ != 0; }

    // Each of these is for its own kinds only.

    /// The number's bits, sign-extended to 64.
    constexpr std::uint64_t bits() const noexcept { return bits_; }
    /// The number read as unsigned, in its own width.
    constexpr std::uint64_t as_unsigned() const noexcept { return narrow_ ? static_cast<std::uint32_t>(bits_) : bits_; }
    constexpr girder::file_time time() const noexcept { return {static_cast<std::int64_t>(bits_)}; }
    constexpr std::size_t size() const noexcept { return size_; }
    constexpr std::u16string_view wide_text() const noexcept { return {wide_, size_}; }
    constexpr std::string_view narrow_text() const noexcept { return {bytes_, size_}; }
    template <typename Char>
    constexpr std::basic_string_view<Char> text() const noexcept
    {
        if constexpr (sizeof(Char) == 1)
            return narrow_text();
        else
            return wide_text();
    }

private:
    kind kind_;
    bool narrow_ = false; ///< at most 32 bits wide
    union {
        std::uint64_t bits_;
        const char16_t* wide_;
        const char* bytes_;
    };
    std::size_t size_ = 0;
};

} // namespace fmtkit
