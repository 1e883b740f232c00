#include "serialisation/field_matcher.h"

#include <algorithm>
#include <numeric>

namespace girder::nsm {

field_matcher::field_matcher(std::span<const std::string_view> names, expected_order order)
    : names_(names), order_(names.size())
{
    std::iota(order_.begin(), order_.end(), std::size_t{0});
    if (order == expected_order::name)
        std::ranges::sort(order_, {}, [this](std::size_t index) { return names_[index]; });
}

std::optional<std::size_t> field_matcher::match(std::string_view name)
{
    for (std::size_t tried = 0; tried < order_.size(); ++tried) {
        const std::size_t position = (next_ + tried) % order_.size();
        if (names_[order_[position]] == name) {
            next_ = (position + 1) % order_.size();
            return order_[position];
        }
    }
    return std::nullopt;
}

} // namespace girder::nsm
