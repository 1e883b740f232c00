#include "app/error_log.h"

#include "base/debug_log.h"
#include "base/system_error.h"
#include "base/win32_error.h"

#include <new>
#include <string>

namespace tidelink {
namespace {

/// Empty where memory runs out: the code alone says enough.
std::u16string text_of_code(std::uint32_t code) noexcept
try {
    return girder::system_message(code);
} catch (const std::bad_alloc&) {
    return {};
}

} // namespace

void log_error(const std::exception_ptr& error, const std::source_location& where) noexcept
try {
    std::rethrow_exception(error);
} catch (const girder::system_error& failure) {
    girder::log_failure({.code = failure.code(), .text = text_of_code(failure.code()), .context = failure.what()},
                        where);
} catch (const std::exception& failure) {
    girder::log_failure({.context = failure.what()}, where);
} catch (...) {
    girder::log_failure({.context = "an exception of an unknown type"}, where);
}

} // namespace tidelink
