#pragma once

#include "base/handles.h"

#include <filesystem>
#include <string>

namespace utility_driver {

/// The stand-in server in a folder of its own, beside a copy of the program under test. The folder's name has what
/// paths are got wrong with: spaces and letters of several scripts. The object leaves neither service nor folder.
class demo_service {
public:
    /// Puts the files there; there is no service yet.
    demo_service();
    demo_service(const demo_service&) = delete;
    demo_service& operator=(const demo_service&) = delete;
    ~demo_service();

    /// The copy of the program that stands beside the server.
    std::u16string program() const { return (folder_ / "tl_server_config.exe").u16string(); }
    std::filesystem::path server() const { return folder_ / "tl_server.exe"; }
    std::string log() const;

    /// Makes the server behave as an entry of its tl_server.ini says, from its next start on.
    void set(const wchar_t* section, const wchar_t* name, unsigned value) const;

    /// Runs the server's own installation. \throws std::runtime_error
    void install() const;
    /// Starts the service and waits until it runs. \throws ui_driver::timed_out
    void start() const;
    /// SERVICE_STATUS::dwCurrentState; 0 when there is no service.
    static DWORD state();
    static bool exists() { return state() != 0; }
    /// Ends the server's processes and removes the service, where there are any.
    static void remove();

private:
    std::filesystem::path folder_;
};

/// The service, with every right; empty when there is none.
girder::unique_service_handle open_demo_service();

} // namespace utility_driver
