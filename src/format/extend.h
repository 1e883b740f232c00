#pragma once

#include <cstddef>
#include <string>

namespace fmtkit::details {

/// Makes a string longer without writing to the new units, which the caller does before anyone reads them.
/// \return the first new unit
/// \throws std::bad_alloc
char* extend(std::string& out, std::size_t units);
char16_t* extend(std::u16string& out, std::size_t units);

} // namespace fmtkit::details
