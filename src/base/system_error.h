#pragma once

#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace girder {

/// A platform call that failed. Carries the 32-bit Windows error code or HRESULT and the name of the call; the text for
/// people is the system's, looked up where the error is shown.
class system_error : public std::runtime_error {
public:
    /// \param call  name of the failing function, e.g. "CreateProcessW"; copied
    system_error(std::uint32_t code, std::string_view call);

    std::uint32_t code() const noexcept { return code_; }

private:
    std::uint32_t code_;
};

} // namespace girder
