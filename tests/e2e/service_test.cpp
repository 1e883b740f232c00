#include "base/unique_handle.h"
#include "base/utf.h"
#include "fixture.h"
#include "ui_driver/polling.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using namespace e2e;
using ui_driver::eventually;

struct service_traits {
    using raw_type = SC_HANDLE;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type handle) noexcept { ::CloseServiceHandle(handle); }
};
using unique_service = girder::unique_handle<service_traits>;

/// The stand-in server, alone in a folder of its own, installed as the service.
class service_test : public machine_test {
protected:
    void SetUp() override
    {
        machine_test::SetUp();
        folder_ = std::filesystem::temp_directory_path() / "tidelink server";
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        const std::filesystem::path server = folder_ / "tl_server.exe";
        std::filesystem::copy_file(std::filesystem::path(server_under_test), server);

        const std::wstring install = L"\"" + server.wstring() + L"\" -install-service";
        ASSERT_EQ(::_wsystem((L"\"" + install + L"\"").c_str()), 0);
        const unique_service manager(::OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
        service_.reset(::OpenServiceW(manager.get(), L"zelpssrv", SERVICE_ALL_ACCESS));
        ASSERT_TRUE(service_);
        ASSERT_TRUE(::StartServiceW(service_.get(), 0, nullptr));
        ASSERT_TRUE(eventually([&] { return state() == SERVICE_RUNNING; }));
    }

    void TearDown() override
    {
        stop();
        ::DeleteService(service_.get());
        service_.reset();
        machine_test::TearDown();
    }

    DWORD state() const
    {
        SERVICE_STATUS status{};
        ::QueryServiceStatus(service_.get(), &status);
        return status.dwCurrentState;
    }

    bool stop() const
    {
        SERVICE_STATUS status{};
        ::ControlService(service_.get(), SERVICE_CONTROL_STOP, &status);
        return eventually([&] { return state() == SERVICE_STOPPED; });
    }

    std::string log() const
    {
        std::ostringstream text;
        text << std::ifstream(folder_ / "tl_server.log").rdbuf();
        return text.str();
    }

private:
    std::filesystem::path folder_;
    unique_service service_;
};

TEST_F(service_test, the_running_service_reads_what_was_applied)
{
    const auto has_logged = [this](const char* text) { return log().find(text) != std::string::npos; };
    EXPECT_TRUE(eventually([&] { return has_logged("started, sharing all ports; auto-discovery on"); })) << log();
    const utility program;
    program.control(id::share_selected).click();
    program.check_ports({3, 10});
    program.control(id::auto_discovery).click();
    program.control(id::apply).click();
    EXPECT_TRUE(eventually([&] { return has_logged("reloaded, "); }));
    EXPECT_EQ(program.close(), 0U);
    EXPECT_TRUE(stop());
    EXPECT_THAT(log(), testing::ContainsRegex("reloaded, sharing COM3 COM10; auto-discovery off\\n.* stopped\\n$"));
}

} // namespace
