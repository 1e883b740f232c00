#pragma once

#include <string>

namespace girder {

/// Full path of the running executable (GetModuleFileNameW), of any length.
/// \throws system_error
std::u16string program_path();

/// The part of program_path() up to and including its last backslash.
/// \throws system_error
std::u16string program_folder();

} // namespace girder
