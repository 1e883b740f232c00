#include "base/system_error.h"

#include <string>

namespace girder {

system_error::system_error(std::uint32_t code, std::string_view call)
    : std::runtime_error(std::string(call)), code_(code)
{}

} // namespace girder
