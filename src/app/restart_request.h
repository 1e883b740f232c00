#pragma once

namespace tidelink {

/// Whether the program starts anew after its window has closed. The entry owns the one instance; the main dialog sets
/// it. User-interface thread only.
class restart_request {
public:
    void set() noexcept { requested_ = true; }
    void clear() noexcept { requested_ = false; }
    bool requested() const noexcept { return requested_; }

private:
    bool requested_ = false;
};

} // namespace tidelink
