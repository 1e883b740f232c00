#pragma once

#include "base/handles.h"

#include <windows.h>

#include <cstddef>

namespace ui_driver {

/// A block of memory inside the process that owns a window, for messages whose parameter is a pointer that the system
/// does not translate. Freed with the object.
class remote_memory {
public:
    /// \throws girder::system_error
    remote_memory(HWND window, std::size_t size);
    remote_memory(const remote_memory&) = delete;
    remote_memory& operator=(const remote_memory&) = delete;
    ~remote_memory();

    /// The address in the other process, `offset` bytes into the block.
    std::byte* address(std::size_t offset = 0) const noexcept { return address_ + offset; }

    /// \throws girder::system_error
    void write(const void* data, std::size_t size) const;
    /// \throws girder::system_error
    void read(void* data, std::size_t size, std::size_t offset = 0) const;

private:
    girder::unique_kernel_handle process_;
    std::byte* address_ = nullptr;
};

} // namespace ui_driver
