#include "base/utf.h"
#include "base/win32_error.h"
#include "fixture.h"
#include "ui_driver/polling.h"
#include "utility_driver/demo_service.h"
#include "utility_driver/processes.h"

#include <chrono>
#include <thread>

namespace {

using namespace e2e;
using ui_driver::eventually;

bool manager_answers()
{
    return static_cast<bool>(girder::unique_service_handle(::OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT)));
}

void ensure_service_manager()
{
    if (manager_answers())
        return;
    std::wstring command_line = L"services.exe";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    ASSERT_TRUE(::CreateProcessW(nullptr, command_line.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr,
                                 nullptr, &startup, &started));
    const girder::unique_kernel_handle thread(started.hThread);
    const girder::unique_kernel_handle process(started.hProcess);
    ASSERT_TRUE(eventually(manager_answers));
}

/// Every test ends the service manager, and is followed by a new one.
class service_outage_test : public machine_test {
protected:
    void SetUp() override
    {
        ensure_service_manager();
        machine_test::SetUp();
    }
    void TearDown() override
    {
        ensure_service_manager();
        machine_test::TearDown();
    }

    static void end_service_manager()
    {
        end_processes(L"services.exe");
        ASSERT_TRUE(eventually([] { return !manager_answers(); }));
    }

    /// The call that starts or stops the service returns soon after the service has been told; nothing shows from
    /// outside that only the polling of its state is left.
    static void let_the_call_return() { std::this_thread::sleep_for(std::chrono::milliseconds(1500)); }

    static void expect_standalone(const utility& program)
    {
        const ui_driver::dialog window = program.window();
        EXPECT_EQ(window.item(id::status).text(), u"Running as standalone");
        EXPECT_FALSE(window.item(id::start).enabled());
        EXPECT_FALSE(window.item(id::stop).enabled());
        EXPECT_TRUE(ui_driver::find_dialogs(error_title).empty());
    }

    demo_service service_; ///< removed after TearDown(), by a service manager that answers
};

TEST_F(service_outage_test, without_the_service_manager_both_buttons_are_disabled_and_nothing_is_reported)
{
    end_service_manager();
    const utility program;
    expect_standalone(program);
}

TEST_F(service_outage_test, a_state_that_cannot_be_read_any_more_ends_a_start_silently_and_a_stop_with_an_error)
{
    constexpr unsigned longer_than_the_test_ms = 30'000;
    for (const auto& [button, delay] : {std::pair(id::start, L"start_ms"), std::pair(id::stop, L"stop_ms")}) {
        ensure_service_manager();
        demo_service::remove();
        service_.set(L"service", L"start_ms", 0);
        service_.set(L"service", delay, longer_than_the_test_ms);
        service_.install();
        if (button == id::stop)
            service_.start();
        const utility program(service_.program());
        program.control(button).post_click();
        const ui_driver::dialog box = program.message(wait_title);
        let_the_call_return();
        end_service_manager();
        box.wait_until_closed();
        if (button == id::stop) {
            const ui_driver::dialog error = program.message(error_title);
            EXPECT_EQ(utility::text_of(error),
                      "Error " + girder::to_utf8(girder::system_message(RPC_S_SERVER_UNAVAILABLE)) + " (0x000006ba)");
            utility::answer(error, id::ok);
        }
        expect_standalone(program);
    }
}

} // namespace
