#pragma once

#include <exception>
#include <stop_token>

namespace girder {

/// Raised in an operation at the first resumption after its cancellation was requested.
class operation_cancelled : public std::exception {
public:
    const char* what() const noexcept override { return "operation cancelled"; }
};

/// What an operation looks at to learn that it shall end; std::stop_source requests it. A default-constructed one is
/// never requested.
using cancellation = std::stop_token;

/// \throws operation_cancelled
inline void throw_if_cancelled(const cancellation& cancelled)
{
    if (cancelled.stop_requested())
        throw operation_cancelled();
}

} // namespace girder
