#include "base/debug_log.h"
#include "base/wide.h"

#include <new>

namespace girder {

void log_failure(const failure& what, const std::source_location& where) noexcept
try {
    ::OutputDebugStringW(as_wide(failure_line(what, ::GetCurrentThreadId(), where)));
} catch (const std::bad_alloc&) {
    ::OutputDebugStringW(L"out of memory while logging a failure\n");
}

} // namespace girder
