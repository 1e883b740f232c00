#include "utility_driver/demo_service.h"

#include "ui_driver/polling.h"
#include "ui_driver/window.h"
#include "utility_driver/processes.h"
#include "utility_driver/utility.h"

#include <windows.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace utility_driver {

using girder::unique_service_handle;
using ui_driver::eventually;
using ui_driver::timed_out;

namespace {

/// A process that has ended a moment ago still holds its file.
void remove_folder(const std::filesystem::path& folder)
{
    std::error_code error;
    if (!eventually([&] { return std::filesystem::remove_all(folder, error), !error; }))
        throw timed_out("the folder of the server stays");
}

} // namespace

unique_service_handle open_demo_service()
{
    const unique_service_handle manager(::OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
    return unique_service_handle(::OpenServiceW(manager.get(), L"zelpssrv", SERVICE_ALL_ACCESS));
}

demo_service::demo_service() : folder_(std::filesystem::temp_directory_path() / L"Tidelink Überwachung サーバー")
{
    remove();
    remove_folder(folder_);
    std::filesystem::create_directories(folder_);
    std::filesystem::copy_file(std::filesystem::path(server_under_test), server());
    std::filesystem::copy_file(std::filesystem::path(program_under_test), program());
}

demo_service::~demo_service()
{
    remove();
    remove_folder(folder_);
}

std::string demo_service::log() const
{
    std::ostringstream text;
    text << std::ifstream(folder_ / "tl_server.log").rdbuf();
    return text.str();
}

void demo_service::set(const wchar_t* section, const wchar_t* name, unsigned value) const
{
    ::WritePrivateProfileStringW(section, name, std::to_wstring(value).c_str(), (folder_ / "tl_server.ini").c_str());
}

void demo_service::install() const
{
    const std::wstring command = L"\"" + server().wstring() + L"\" -install-service";
    if (::_wsystem((L"\"" + command + L"\"").c_str()) != 0 || !exists())
        throw std::runtime_error("the service is not installed");
}

void demo_service::start() const
{
    if (!::StartServiceW(open_demo_service().get(), 0, nullptr) ||
        !eventually([] { return state() == SERVICE_RUNNING; }))
        throw timed_out("the service does not start");
}

DWORD demo_service::state()
{
    SERVICE_STATUS status{};
    ::QueryServiceStatus(open_demo_service().get(), &status);
    return status.dwCurrentState;
}

void demo_service::remove()
{
    // Whatever they are doing: serving, installing or not even connected to the service manager.
    end_processes(L"tl_server.exe");
    ::DeleteService(open_demo_service().get());
    if (!eventually([] { return !exists(); }))
        throw timed_out("the service stays");
}

} // namespace utility_driver
