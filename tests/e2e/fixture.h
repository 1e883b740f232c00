#pragma once

#include "device_database/device_database.h"
#include "support/debug_monitor.h"
#include "support/handle_count.h"
#include "support/reload_listener.h"
#include "ui_driver/polling.h"
#include "utility_driver/settings_key.h"
#include "utility_driver/utility.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <tlhelp32.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>

namespace e2e {

using namespace utility_driver;

inline constexpr char16_t about_title[] = u"About Tidelink Port Server";

inline std::string content_of(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The path of every library that a process has loaded, and its own, by the name in lower case.
inline std::map<std::wstring, std::filesystem::path> modules_of(DWORD process)
{
    std::map<std::wstring, std::filesystem::path> modules;
    const girder::unique_file snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, process));
    MODULEENTRY32W module{};
    module.dwSize = sizeof module;
    for (BOOL more = ::Module32FirstW(snapshot.get(), &module); more; more = ::Module32NextW(snapshot.get(), &module))
        modules.emplace(::_wcslwr(module.szModule), static_cast<const wchar_t*>(module.szExePath));
    return modules;
}

/// A window that does not answer for so long hangs, whatever else the machine does.
inline constexpr std::chrono::seconds hang{2};

/// A machine with the ports COM1, COM3, COM7 and COM10, and nothing stored.
class machine_test : public testing::Test {
protected:
    void SetUp() override
    {
        settings_key::remove();
        device_database::remove_port_devices();
        for (const std::u16string port : {u"COM10", u"COM3", u"COM7"})
            device_database::add_port(port, u"USB Serial Port (" + port + u")");
        device_database::add_port(u"COM1", u"Communications Port (COM1)");
    }
    void TearDown() override { settings_key::remove(); }
};

/// Waits until the server was signalled `times` times since it listens. \return false when it was more or less
inline bool heard(const support::reload_listener& server, int times)
{
    return ui_driver::eventually([&] { return server.signals() >= times; }) && server.signals() == times;
}

/// The program holds as many handles after `rounds` of an action as before, both counted when it has looked for
/// updates: it does so two seconds after its start, and fails here, which is logged.
/// \param log  begun before the program
template <typename Action>
void expect_no_more_handles(support::debug_monitor& log, const utility& program, int rounds, Action action)
{
    constexpr int warm_up = 10;
    const DWORD process = program.process_id();
    const auto count = [process] {
        return support::settled([process] { return support::handle_count(process); }, support::idle_threads_are_gone);
    };
    const auto act = [&](int times) {
        for (int i = 0; i < times && !testing::Test::HasFailure(); ++i)
            action();
    };
    ASSERT_TRUE(ui_driver::eventually([&] { return log.of(process).find("[InternetOpenUrlW]") != std::string::npos; }));
    act(warm_up);
    const std::size_t before = count();
    ASSERT_GT(before, 0U);
    act(rounds);
    EXPECT_EQ(count(), before);
}

} // namespace e2e
