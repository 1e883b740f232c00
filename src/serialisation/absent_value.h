#pragma once

#include "serialisation/kindless_reader.h"

namespace girder::nsm {

/// Stands for a member that an object lacks: a null, which is no value of any kind.
class absent_value final : public kindless_reader {
public:
    std::uint32_t capabilities() const noexcept override { return 0; }
    bool is_null() const override { return true; }
    std::uint32_t structure_version() const override { return 0; }
};

} // namespace girder::nsm
