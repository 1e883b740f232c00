#include "serialisation/big_number.h"

#include <algorithm>
#include <bit>

namespace girder::nsm {
namespace {

constexpr std::size_t digit_bits = 32;

} // namespace

big_number::big_number(std::uint64_t value)
    : digits_{static_cast<std::uint32_t>(value), static_cast<std::uint32_t>(value >> digit_bits)}
{
    drop_leading_zeros();
}

big_number& big_number::operator*=(std::uint32_t factor)
{
    std::uint64_t carry = 0;
    for (std::uint32_t& digit : digits_) {
        carry += std::uint64_t{digit} * factor;
        digit = static_cast<std::uint32_t>(carry);
        carry >>= digit_bits;
    }
    digits_.push_back(static_cast<std::uint32_t>(carry));
    drop_leading_zeros();
    return *this;
}

big_number& big_number::operator+=(const big_number& other)
{
    digits_.resize(std::max(digits_.size(), other.digits_.size()) + 1);
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < digits_.size(); ++i) {
        carry += std::uint64_t{digits_[i]} + (i < other.digits_.size() ? other.digits_[i] : 0);
        digits_[i] = static_cast<std::uint32_t>(carry);
        carry >>= digit_bits;
    }
    drop_leading_zeros();
    return *this;
}

big_number& big_number::operator-=(const big_number& other)
{
    std::uint32_t borrow = 0;
    for (std::size_t i = 0; i < digits_.size(); ++i) {
        const std::uint64_t taken = std::uint64_t{i < other.digits_.size() ? other.digits_[i] : 0} + borrow;
        borrow = digits_[i] < taken ? 1 : 0;
        digits_[i] = static_cast<std::uint32_t>(digits_[i] - taken);
    }
    drop_leading_zeros();
    return *this;
}

big_number& big_number::operator<<=(std::size_t bits)
{
    *this *= std::uint32_t{1} << (bits % digit_bits);
    if (!digits_.empty())
        digits_.insert(digits_.begin(), bits / digit_bits, 0);
    return *this;
}

big_number& big_number::scale_by_ten(std::size_t exponent)
{
    for (; exponent > 0; --exponent)
        *this *= 10;
    return *this;
}

std::size_t big_number::bit_width() const noexcept
{
    return digits_.empty() ? 0
                           : digits_.size() * digit_bits - static_cast<std::size_t>(std::countl_zero(digits_.back()));
}

std::strong_ordering operator<=>(const big_number& one, const big_number& other) noexcept
{
    if (const auto order = one.digits_.size() <=> other.digits_.size(); order != 0)
        return order;
    return std::lexicographical_compare_three_way(one.digits_.rbegin(), one.digits_.rend(), other.digits_.rbegin(),
                                                  other.digits_.rend());
}

void big_number::drop_leading_zeros() noexcept
{
    while (!digits_.empty() && digits_.back() == 0)
        digits_.pop_back();
}

} // namespace girder::nsm
