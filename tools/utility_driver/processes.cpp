#include "utility_driver/processes.h"

#include "base/handles.h"
#include "ui_driver/polling.h"
#include "ui_driver/window.h"

#include <windows.h>

#include <tlhelp32.h>

namespace utility_driver {

std::vector<DWORD> processes_of(std::wstring_view executable)
{
    std::vector<DWORD> found;
    const girder::unique_file processes(::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = ::Process32FirstW(processes.get(), &entry); more; more = ::Process32NextW(processes.get(), &entry))
        if (entry.szExeFile == executable)
            found.push_back(entry.th32ProcessID);
    return found;
}

void end_processes(std::wstring_view executable)
{
    for (const DWORD id : processes_of(executable)) {
        const girder::unique_kernel_handle process(::OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, id));
        if (!process)
            continue;
        ::TerminateProcess(process.get(), 1);
        if (::WaitForSingleObject(process.get(), static_cast<DWORD>(ui_driver::patience.count())) != WAIT_OBJECT_0)
            throw ui_driver::timed_out("a process does not end");
    }
}

} // namespace utility_driver
