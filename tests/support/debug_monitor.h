#pragma once

#include "base/handles.h"

#include <windows.h>

#include <cstring>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>

namespace support {

/// Collects what every program of this session writes to the debugger output, in the way of the system's debug
/// monitors: OutputDebugString hands each text over in a shared page. There can be one at a time.
class debug_monitor {
public:
    debug_monitor()
    {
        if (!page_ || !view_ || !may_write_ || !written_)
            throw std::runtime_error("no debug monitor");
        receiving_ = std::jthread([this](const std::stop_token& ending) { receive(ending); });
    }
    debug_monitor(const debug_monitor&) = delete;
    debug_monitor& operator=(const debug_monitor&) = delete;

    /// All that a process has written so far.
    std::string of(DWORD process)
    {
        const std::scoped_lock lock(mutex_);
        return texts_[process];
    }

private:
    struct message {
        DWORD process;
        char text[4092];
    };

    void receive(const std::stop_token& ending)
    {
        constexpr DWORD interval_ms = 50;
        ::SetEvent(may_write_.get());
        while (!ending.stop_requested()) {
            if (::WaitForSingleObject(written_.get(), interval_ms) != WAIT_OBJECT_0)
                continue;
            const auto& [process, text] = *static_cast<const message*>(view_.get());
            const std::scoped_lock lock(mutex_);
            texts_[process].append(text, ::strnlen(text, sizeof text));
            ::SetEvent(may_write_.get());
        }
    }

    girder::unique_kernel_handle page_{
        ::CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(message), L"DBWIN_BUFFER")};
    girder::unique_view view_{::MapViewOfFile(page_.get(), FILE_MAP_READ, 0, 0, 0)};
    girder::unique_kernel_handle may_write_{::CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_BUFFER_READY")};
    girder::unique_kernel_handle written_{::CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_DATA_READY")};
    std::mutex mutex_;
    std::map<DWORD, std::string> texts_;
    std::jthread receiving_;
};

} // namespace support
