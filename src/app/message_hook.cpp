#include "app/message_hook.h"

#include "base/win32_error.h"

namespace tidelink {
namespace {

// A hook procedure takes no context, and its thread has one instance.
thread_local girder::ui_thread* hooked_thread = nullptr;

LRESULT CALLBACK run_posted_callable(int code, WPARAM removal, LPARAM message)
{
    if (code == HC_ACTION && removal == PM_REMOVE)
        hooked_thread->run(*reinterpret_cast<MSG*>(message));
    return ::CallNextHookEx(nullptr, code, removal, message);
}

} // namespace

message_hook::message_hook(girder::ui_thread& thread)
{
    hooked_thread = &thread;
    hook_.reset(::SetWindowsHookExW(WH_GETMESSAGE, run_posted_callable, nullptr, ::GetCurrentThreadId()));
    if (!hook_)
        girder::throw_last_error("SetWindowsHookExW");
}

message_hook::~message_hook()
{
    hook_.reset();
    hooked_thread = nullptr;
}

} // namespace tidelink
