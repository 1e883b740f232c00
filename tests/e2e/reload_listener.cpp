#include "reload_listener.h"

#include "base/win32_error.h"
#include "ui_driver/polling.h"

namespace e2e {
namespace {

girder::unique_kernel_handle create_event(const wchar_t* name)
{
    girder::unique_kernel_handle event(::CreateEventW(nullptr, FALSE, FALSE, name));
    const DWORD code = ::GetLastError();
    if (!event || code == ERROR_ALREADY_EXISTS)
        girder::throw_win32(code, "CreateEventW");
    return event;
}

} // namespace

reload_listener::reload_listener()
    : reload_(create_event(L"Global\\tidelink_{35B11BAB-5238-4E93-B06A-92332C5D20FA}_v1.01")),
      stop_(create_event(nullptr)), thread_([this] { listen(); })
{}

reload_listener::~reload_listener()
{
    ::SetEvent(stop_.get());
    thread_.join();
}

bool reload_listener::heard(int times) const
{
    return ui_driver::eventually([&] { return signals_ >= times; }) && signals_ == times;
}

void reload_listener::listen()
{
    const HANDLE events[] = {stop_.get(), reload_.get()};
    while (::WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0 + 1)
        ++signals_;
}

} // namespace e2e
