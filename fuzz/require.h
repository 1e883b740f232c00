#pragma once

#include <cstdlib>
#include <functional>

namespace fuzz {

/// Ends the run with a finding unless it holds.
inline void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// \return whether `read` ended without an Error
template <typename Error, typename Read>
bool succeeds(const Read& read)
{
    try {
        read();
        return true;
    } catch (const Error&) {
        return false;
    }
}

} // namespace fuzz
