#include "async/ui_thread.h"

#include "async/srw_lock.h"
#include "base/win32_error.h"

#include <algorithm>

namespace girder {
ui_thread::ui_thread(UINT message) noexcept : message_(message), thread_(::GetCurrentThreadId())
{
    // A thread has no queue to post to before its first message call.
    MSG none;
    ::PeekMessageW(&none, nullptr, WM_USER, WM_USER, PM_NOREMOVE);
}

bool ui_thread::is_current() const noexcept
{
    return ::GetCurrentThreadId() == thread_;
}

void ui_thread::post(std::function<void()> callable)
{
    if (!callable)
        return;
    auto owned = std::make_unique<std::function<void()>>(std::move(callable));
    const auto carried = reinterpret_cast<WPARAM>(owned.get());
    {
        const exclusive_lock guard(lock_);
        outstanding_.push_back(std::move(owned));
    }
    if (::PostThreadMessageW(thread_, message_, carried, 0))
        return;
    const DWORD code = ::GetLastError();
    take(carried);
    throw_win32(code, "PostThreadMessageW");
}

void ui_thread::run(MSG& message) noexcept
{
    if (message.message != message_ || message.hwnd != nullptr)
        return;
    const posted callable = take(message.wParam);
    message.message = WM_NULL;
    if (callable)
        (*callable)();
}

ui_thread::posted ui_thread::take(WPARAM carried) noexcept
{
    const exclusive_lock guard(lock_);
    const auto found = std::ranges::find_if(
        outstanding_, [carried](const posted& item) { return reinterpret_cast<WPARAM>(item.get()) == carried; });
    if (found == outstanding_.end())
        return nullptr;
    posted taken = std::move(*found);
    outstanding_.erase(found);
    return taken;
}

} // namespace girder
