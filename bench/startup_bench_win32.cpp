#include "base/handles.h"
#include "base/program.h"
#include "base/wide.h"
#include "base/win32_error.h"
#include "device_database/device_database.h"
#include "harness.h"
#include "resource.h"

#include <windows.h>

#include <commctrl.h>
#include <psapi.h>

#include <memory>
#include <string>

// Start to idle of the program, as it is released, beside a dialog in plain C with the same template, list and platform
// calls.

namespace {

using girder::throw_last_error;

constexpr DWORD patience_ms = 20'000;
constexpr int port_count = 16;

/// A dialog program that is started again and again, one instance at a time.
class program {
public:
    explicit program(std::u16string path) : path_(std::move(path)) {}

    /// Until the dialog is visible and answers. WaitForInputIdle says nothing here: the wait of any thread counts, even
    /// before there is a window.
    void start_to_idle()
    {
        std::u16string command_line = u'"' + path_ + u'"';
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION started{};
        if (!::CreateProcessW(nullptr, girder::as_wide(command_line.data()), nullptr, nullptr, FALSE, 0, nullptr,
                              nullptr, &startup, &started))
            throw_last_error("CreateProcessW");
        process_.reset(started.hProcess);
        const girder::unique_kernel_handle main_thread{started.hThread};
        dialog_ = wait_for_dialog(started.dwThreadId);
        ::SendMessageW(dialog_, WM_NULL, 0, 0);
    }

    bool lists_the_ports() const { return ListView_GetItemCount(::GetDlgItem(dialog_, IDC_PORTS)) == port_count; }

    /// In bytes, of the program as it stands idle.
    std::size_t private_memory() const
    {
        PROCESS_MEMORY_COUNTERS memory{};
        if (!::GetProcessMemoryInfo(process_.get(), &memory, sizeof memory))
            throw_last_error("GetProcessMemoryInfo");
        return memory.PagefileUsage;
    }

    void close()
    {
        ::PostMessageW(dialog_, WM_CLOSE, 0, 0);
        if (::WaitForSingleObject(process_.get(), patience_ms) != WAIT_OBJECT_0)
            throw_last_error("WaitForSingleObject");
    }

private:
    HWND wait_for_dialog(DWORD thread) const
    {
        HWND found = nullptr;
        for (;;) {
            ::EnumThreadWindows(thread, take_dialog, reinterpret_cast<LPARAM>(&found));
            if (found)
                return found;
            if (::WaitForSingleObject(process_.get(), 1) != WAIT_TIMEOUT)
                throw_last_error("WaitForSingleObject");
        }
    }

    static BOOL CALLBACK take_dialog(HWND window, LPARAM found)
    {
        if (!::IsWindowVisible(window) || !::GetDlgItem(window, IDC_PORTS))
            return TRUE;
        *reinterpret_cast<HWND*>(found) = window;
        return FALSE;
    }

    std::u16string path_;
    girder::unique_kernel_handle process_;
    HWND dialog_ = nullptr;
};

bench::participant starts(const char* name, const std::shared_ptr<program>& started)
{
    return {.name = name,
            .run = [started] { started->start_to_idle(); },
            .is_right =
                [started] {
                    started->start_to_idle();
                    const bool right = started->lists_the_ports();
                    started->close();
                    return right;
                },
            .finish = [started] { started->close(); }};
}

void fill_device_database()
{
    device_database::remove_port_devices();
    for (int number = 1; number <= port_count; ++number) {
        const std::string digits = std::to_string(number);
        const std::u16string port = u"COM" + std::u16string(digits.begin(), digits.end());
        device_database::add_port(port, u"USB Serial Port (" + port + u")");
    }
}

/// How much more the first takes than the second, in KiB.
double memory_above(program& first, program& second)
{
    first.start_to_idle();
    const auto taken = static_cast<double>(first.private_memory());
    first.close();
    second.start_to_idle();
    const auto other = static_cast<double>(second.private_memory());
    second.close();

    return (taken - other) / 1024;
}

} // namespace

int main()
{
    fill_device_database();
    bench::report report("Start");
    const std::u16string folder = girder::program_folder();
    const auto utility = std::make_shared<program>(folder + u"..\\..\\windows\\tl_server_config.exe");
    const auto reference = std::make_shared<program>(folder + u"reference_dialog.exe");
    report.compare({.work = "start to idle",
                    .goal = 1.10,
                    .subject = starts("tl_server_config", utility),
                    .peers = {starts("reference dialog", reference)},
                    .draw = [](bench::random_source&) {},
                    .checked_draws = 2,
                    .rounds = 21});
    report.state("private memory above the reference dialog's", memory_above(*utility, *reference), 3 * 1024, "KiB");
    device_database::remove_port_devices();
    return report.exit_code();
}
