#pragma once

#include "base/unique_handle.h"

namespace girder {

template <typename Interface>
struct com_traits {
    using raw_type = Interface*;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type object) noexcept { object->Release(); }
};

/// Owns one reference to a COM object. put() suits the calls that hand out a new reference.
template <typename Interface>
using unique_com = unique_handle<com_traits<Interface>>;

} // namespace girder
