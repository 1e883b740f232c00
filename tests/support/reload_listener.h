#pragma once

#include "base/handles.h"

#include <windows.h>

#include <atomic>
#include <stdexcept>
#include <thread>

namespace support {

/// Stands where the server stands: owns the reload event while it lives, and counts how often it is set.
class reload_listener {
public:
    /// \throws std::runtime_error when there is such an event already
    reload_listener()
    {
        if (!reload_ || ::GetLastError() == ERROR_ALREADY_EXISTS)
            throw std::runtime_error("a server is there already");
        listening_ = std::thread([this] { listen(); });
    }
    reload_listener(const reload_listener&) = delete;
    reload_listener& operator=(const reload_listener&) = delete;
    ~reload_listener()
    {
        ending_ = true;
        ::SetEvent(asked_.get());
        listening_.join();
    }

    /// How often the event was set up to now. Told by the listening thread, after it has counted all of them.
    int signals() const
    {
        ::SetEvent(asked_.get());
        ::WaitForSingleObject(answered_.get(), INFINITE);
        return signals_;
    }

private:
    void listen()
    {
        // Of two that are set, a wait takes the first.
        const HANDLE events[] = {reload_.get(), asked_.get()};
        while (!ending_)
            if (::WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0)
                ++signals_;
            else
                ::SetEvent(answered_.get());
    }

    girder::unique_kernel_handle asked_{::CreateEventW(nullptr, FALSE, FALSE, nullptr)};
    girder::unique_kernel_handle answered_{::CreateEventW(nullptr, FALSE, FALSE, nullptr)};
    girder::unique_kernel_handle reload_{
        ::CreateEventW(nullptr, FALSE, FALSE, L"Global\\tidelink_{35B11BAB-5238-4E93-B06A-92332C5D20FA}_v1.01")};
    int signals_ = 0; ///< handed over by `answered_`
    std::atomic<bool> ending_ = false;
    std::thread listening_;
};

} // namespace support
