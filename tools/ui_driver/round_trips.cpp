#include "ui_driver/round_trips.h"

#include "ui_driver/polling.h"

#include <algorithm>

namespace ui_driver {

void round_trips::begin(clock::duration aside)
{
    const std::lock_guard guard(lock_);
    counted_from_ = clock::now() + aside;
    longest_ = {};
}

void round_trips::pause(clock::duration aside)
{
    const std::lock_guard guard(lock_);
    counted_from_ = clock::now() + aside;
}

round_trips::clock::duration round_trips::longest() const
{
    const auto asked = clock::now();
    eventually([&] {
        const std::lock_guard guard(lock_);
        return last_begin_ > asked;
    });
    const std::lock_guard guard(lock_);
    return longest_;
}

void round_trips::watch(HWND window, const std::stop_token& stop)
{
    while (!stop.stop_requested()) {
        const auto begin = clock::now();
        DWORD_PTR result = 0;
        ::SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, static_cast<UINT>(patience.count()), &result);
        {
            const std::lock_guard guard(lock_);
            last_begin_ = begin;
            longest_ = std::max(longest_, clock::now() - std::max(begin, counted_from_));
        }
        // Wine's Sleep ends by the time of day, which a test may set back meanwhile; no thread is signalled while it
        // runs.
        ::WaitForSingleObject(::GetCurrentThread(), 1);
    }
}

} // namespace ui_driver
