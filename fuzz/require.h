#pragma once

#include <cstdlib>

namespace fuzz {

/// Ends the run with a finding unless it holds.
inline void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// \param refused  is given the Error that `read` ends with
/// \return whether `read` ended without an Error
template <typename Error, typename Read, typename Refused>
bool succeeds(const Read& read, const Refused& refused)
{
    try {
        read();
        return true;
    } catch (const Error& error) {
        refused(error);
        return false;
    }
}
template <typename Error, typename Read>
bool succeeds(const Read& read)
{
    return succeeds<Error>(read, [](const Error&) {});
}

} // namespace fuzz
