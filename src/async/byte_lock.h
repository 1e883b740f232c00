#pragma once

#include <atomic>
#include <cstdint>

namespace girder {

/// A lock of one byte, for use with std::lock_guard. Who finds it held waits on the byte's address, without spinning
/// (WaitOnAddress). Not recursive.
class byte_lock {
public:
    byte_lock() noexcept = default;
    byte_lock(const byte_lock&) = delete;
    byte_lock& operator=(const byte_lock&) = delete;
    ~byte_lock() = default;

    void lock() noexcept
    {
        while (byte_.exchange(held, std::memory_order_acquire) == held)
            wait_while_held();
    }

    /// The next holder may free the object at once: no member is read after the store.
    void unlock() noexcept
    {
        byte_.store(open, std::memory_order_release);
        wake_one();
    }

private:
    static constexpr std::uint8_t held = 0;
    static constexpr std::uint8_t open = 1;

    void wait_while_held() noexcept;
    void wake_one() noexcept;

    std::atomic<std::uint8_t> byte_ = open;
};

} // namespace girder
