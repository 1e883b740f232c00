#include "ui_driver/remote_memory.h"

#include "base/win32_error.h"

namespace ui_driver {
namespace {

girder::unique_kernel_handle open_owner(HWND window)
{
    DWORD id = 0;
    ::GetWindowThreadProcessId(window, &id);
    girder::unique_kernel_handle process(
        ::OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, id));
    if (!process)
        girder::throw_last_error("OpenProcess");
    return process;
}

} // namespace

remote_memory::remote_memory(HWND window, std::size_t size)
    : process_(open_owner(window)), address_(static_cast<std::byte*>(::VirtualAllocEx(
                                        process_.get(), nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE)))
{
    if (!address_)
        girder::throw_last_error("VirtualAllocEx");
}

remote_memory::~remote_memory()
{
    ::VirtualFreeEx(process_.get(), address_, 0, MEM_RELEASE);
}

void remote_memory::write(const void* data, std::size_t size) const
{
    if (!::WriteProcessMemory(process_.get(), address_, data, size, nullptr))
        girder::throw_last_error("WriteProcessMemory");
}

void remote_memory::read(void* data, std::size_t size, std::size_t offset) const
{
    if (!::ReadProcessMemory(process_.get(), address_ + offset, data, size, nullptr))
        girder::throw_last_error("ReadProcessMemory");
}

} // namespace ui_driver
