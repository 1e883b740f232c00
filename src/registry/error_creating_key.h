#pragma once

#include "base/system_error.h"

namespace girder::registry_ex {

/// The subkey of an array or a structure cannot be created. Carries the registry's status code; what() is "Error
/// creating key".
class error_creating_key : public system_error {
public:
    explicit error_creating_key(std::uint32_t code) : system_error(code, "Error creating key") {}
};

} // namespace girder::registry_ex
