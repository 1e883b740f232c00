#pragma once

#include <atomic>

namespace support {

/// Counts the objects of its kind that are alive, on any thread.
struct counted {
    counted() noexcept { ++alive; }
    counted(const counted&) noexcept { ++alive; }
    counted& operator=(const counted&) = default;
    ~counted() { --alive; }

    static inline std::atomic<int> alive = 0;
};

} // namespace support
