#pragma once

#include "base/unique_handle.h"

#include <windows.h>

// The traits of each kind of handle that more than one file owns. Closing never changes the last error, so a
// failing call's error survives the clean-up between the call and its reader.

namespace girder {
namespace handle_traits {

/// Ends the process when the handle cannot be closed: its ownership is broken.
void close_kernel(HANDLE handle) noexcept;
void close_find(HANDLE handle) noexcept;
void close_view(const void* address) noexcept;
void free_library(HMODULE module) noexcept;
void free_local(void* memory) noexcept;
void close_key(HKEY key) noexcept;
void close_service(SC_HANDLE handle) noexcept;
void delete_gdi(HGDIOBJ object) noexcept;
void delete_device(HDC device) noexcept;
void remove_hook(HHOOK hook) noexcept;

/// Processes, threads, events, mutexes and mappings: they fail with null.
struct kernel {
    using raw_type = HANDLE;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type handle) noexcept { close_kernel(handle); }
};

/// Files: CreateFileW fails with INVALID_HANDLE_VALUE.
struct file {
    using raw_type = HANDLE;
    static raw_type empty() noexcept { return INVALID_HANDLE_VALUE; }
    static void close(raw_type handle) noexcept { close_kernel(handle); }
};

/// FindFirstFileW.
struct find {
    using raw_type = HANDLE;
    static raw_type empty() noexcept { return INVALID_HANDLE_VALUE; }
    static void close(raw_type handle) noexcept { close_find(handle); }
};

/// MapViewOfFile.
struct view {
    using raw_type = const void*;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type address) noexcept { close_view(address); }
};

struct library {
    using raw_type = HMODULE;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type module) noexcept { free_library(module); }
};

/// Memory that a system call allocated with LocalAlloc for its caller.
struct local_memory {
    using raw_type = void*;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type memory) noexcept { free_local(memory); }
};

struct registry_key {
    using raw_type = HKEY;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type key) noexcept { close_key(key); }
};

/// The service manager and its services: they fail with null.
struct service {
    using raw_type = SC_HANDLE;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type handle) noexcept { close_service(handle); }
};

/// Fonts, brushes and bitmaps.
template <typename Object>
struct gdi {
    using raw_type = Object;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type object) noexcept { delete_gdi(object); }
};

/// CreateCompatibleDC. What is selected into it goes before it.
struct memory_device {
    using raw_type = HDC;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type device) noexcept { delete_device(device); }
};

/// SetWindowsHookExW.
struct hook {
    using raw_type = HHOOK;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type hook) noexcept { remove_hook(hook); }
};

} // namespace handle_traits

using unique_kernel_handle = unique_handle<handle_traits::kernel>;
using unique_file = unique_handle<handle_traits::file>;
using unique_find = unique_handle<handle_traits::find>;
using unique_view = unique_handle<handle_traits::view>;
using unique_library = unique_handle<handle_traits::library>;
using unique_local_memory = unique_handle<handle_traits::local_memory>;
using unique_registry_key = unique_handle<handle_traits::registry_key>;
using unique_service_handle = unique_handle<handle_traits::service>;
using unique_font = unique_handle<handle_traits::gdi<HFONT>>;
using unique_memory_device = unique_handle<handle_traits::memory_device>;
using unique_hook = unique_handle<handle_traits::hook>;

} // namespace girder
