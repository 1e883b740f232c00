#pragma once

#include "base/handles.h"
#include "base/win32_error.h"

#include <windows.h>

#include <thread>

namespace support {

/// Stands where the server stands: owns the reload event while it lives, and counts how often it is set.
class reload_listener {
public:
    /// \throws girder::system_error, also when the event exists already
    reload_listener()
        : reload_(create_event(L"Global\\tidelink_{35B11BAB-5238-4E93-B06A-92332C5D20FA}_v1.01")),
          stop_(create_event(nullptr)), asked_(create_event(nullptr)), answered_(create_event(nullptr)),
          thread_([this] { listen(); })
    {}
    reload_listener(const reload_listener&) = delete;
    reload_listener& operator=(const reload_listener&) = delete;
    ~reload_listener()
    {
        ::SetEvent(stop_.get());
        thread_.join();
    }

    /// How often the event was set up to now. Told by the listening thread, after it has counted all of them.
    int signals() const
    {
        ::SetEvent(asked_.get());
        ::WaitForSingleObject(answered_.get(), INFINITE);
        return signals_;
    }

private:
    static girder::unique_kernel_handle create_event(const wchar_t* name)
    {
        girder::unique_kernel_handle event(::CreateEventW(nullptr, FALSE, FALSE, name));
        const DWORD code = ::GetLastError();
        if (!event || code == ERROR_ALREADY_EXISTS)
            girder::throw_win32(code, "CreateEventW");
        return event;
    }

    void listen()
    {
        // Of several that are set, a wait takes the first.
        const HANDLE events[] = {reload_.get(), asked_.get(), stop_.get()};
        for (;;) {
            switch (::WaitForMultipleObjects(3, events, FALSE, INFINITE)) {
            case WAIT_OBJECT_0:
                ++signals_;
                break;
            case WAIT_OBJECT_0 + 1:
                ::SetEvent(answered_.get());
                break;
            default:
                return;
            }
        }
    }

    girder::unique_kernel_handle reload_;
    girder::unique_kernel_handle stop_;
    girder::unique_kernel_handle asked_;
    girder::unique_kernel_handle answered_;
    int signals_ = 0; ///< handed over by `answered_`
    std::thread thread_;
};

} // namespace support
