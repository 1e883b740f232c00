#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace girder::nsm {

/// Finds the field that a delivered name belongs to. It expects the names to come in a known order and tries the next
/// one first; the expectation affects only the speed, never the result.
class field_matcher {
public:
    enum class expected_order { declaration, name };

    /// \param names  of the fields, in declaration order; the views outlive the matcher
    field_matcher(std::span<const std::string_view> names, expected_order order);

    /// The index of the field of that exact name, in declaration order; empty when there is none.
    std::optional<std::size_t> match(std::string_view name);

private:
    std::span<const std::string_view> names_;
    std::vector<std::size_t> order_; ///< field indices in the expected order
    std::size_t next_ = 0;           ///< position in order_
};

} // namespace girder::nsm
