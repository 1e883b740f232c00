#include "async/byte_lock.h"

namespace girder {

void byte_lock::wait_while_held() noexcept
{
    byte_.wait(held);
}

void byte_lock::wake_one() noexcept
{
    byte_.notify_one();
}

} // namespace girder
