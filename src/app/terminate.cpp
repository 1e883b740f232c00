#include "app/error_log.h"

#include <cstdlib>
#include <exception>

// Replaces the library's terminate handler: it would print the demangled type of an uncaught exception to a console
// that this program does not have, and its demangler alone takes 69 KiB.
namespace __gnu_cxx {

// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the library's own name, to be replaced
void __verbose_terminate_handler()
{
    if (const std::exception_ptr uncaught = std::current_exception())
        tidelink::log_error(uncaught);
    std::abort();
}

} // namespace __gnu_cxx
