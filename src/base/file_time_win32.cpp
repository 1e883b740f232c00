#include "base/file_time.h"

#include <windows.h>

namespace girder {

file_time system_now() noexcept
{
    FILETIME now{};
    ::GetSystemTimeAsFileTime(&now);
    return {(std::int64_t{now.dwHighDateTime} << 32) | std::int64_t{now.dwLowDateTime}};
}

} // namespace girder
