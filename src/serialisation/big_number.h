#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace girder::nsm {

/// An integer of any size from 0, for exact conversions of real numbers.
class big_number {
public:
    explicit big_number(std::uint64_t value);

    /// \throws std::bad_alloc, as the operations below
    big_number& operator*=(std::uint32_t factor);
    big_number& operator+=(const big_number& other);
    /// \param other  not larger than this number
    big_number& operator-=(const big_number& other);
    /// Multiplies by 2 to the power of `bits`.
    big_number& operator<<=(std::size_t bits);
    /// Multiplies by 10 to the power of `exponent`.
    big_number& scale_by_ten(std::size_t exponent);

    /// How many bits the number has without leading zeros; 0 for 0.
    std::size_t bit_width() const noexcept;

    friend std::strong_ordering operator<=>(const big_number& one, const big_number& other) noexcept;
    friend bool operator==(const big_number& one, const big_number& other) = default;

private:
    void drop_leading_zeros() noexcept;

    std::vector<std::uint32_t> digits_; ///< to the base 2^32, the lowest first, the last one not 0
};

} // namespace girder::nsm
