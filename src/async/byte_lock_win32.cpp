#include "async/byte_lock.h"

#include <windows.h>

namespace girder {

static_assert(sizeof(std::atomic<std::uint8_t>) == 1);

void byte_lock::wait_while_held() noexcept
{
    std::uint8_t unchanged = held;
    ::WaitOnAddress(&byte_, &unchanged, sizeof unchanged, INFINITE);
}

void byte_lock::wake_one() noexcept
{
    ::WakeByAddressSingle(&byte_);
}

} // namespace girder
