#pragma once

#include <windows.h>

namespace girder {

/// Holds a slim lock exclusively for its own life.
class exclusive_lock {
public:
    explicit exclusive_lock(SRWLOCK& lock) noexcept : lock_(lock) { ::AcquireSRWLockExclusive(&lock_); }
    exclusive_lock(const exclusive_lock&) = delete;
    exclusive_lock& operator=(const exclusive_lock&) = delete;
    ~exclusive_lock() { ::ReleaseSRWLockExclusive(&lock_); }

private:
    SRWLOCK& lock_;
};

} // namespace girder
