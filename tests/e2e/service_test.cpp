#include "base/utf.h"
#include "base/win32_error.h"
#include "fixture.h"
#include "support/cases.h"
#include "ui_driver/keyboard.h"
#include "ui_driver/round_trips.h"
#include "utility_driver/demo_service.h"
#include "utility_driver/processes.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <thread>

namespace {

using namespace e2e;
using namespace std::chrono_literals;
using testing::ContainsRegex;
using ui_driver::eventually;
using clock = std::chrono::steady_clock;

/// What the main window shows about the service: status, caption of the first button, which buttons are enabled.
using shown = std::string_view;
constexpr shown not_installed = "Not installed, &Install, can start";
constexpr shown stopped = "Stopped, &Start, can start";
constexpr shown standalone = "Running as standalone, &Start";
constexpr shown running = "Running, &Start, can stop";

constexpr unsigned an_hour_ms = 3'600'000;
constexpr unsigned long_enough_ms = 2500; ///< for the wait dialog to open, and what happens then
constexpr std::uint32_t access_denied = 0x80070005;

bool manager_answers()
{
    return static_cast<bool>(girder::unique_service_handle(::OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT)));
}

class service_test : public machine_test {
protected:
    void TearDown() override
    {
        if (!manager_answers())
            ::_wspawnl(_P_DETACH, L"C:\\windows\\system32\\services.exe", L"services.exe", nullptr);
        ASSERT_TRUE(eventually(manager_answers));
        machine_test::TearDown();
    }

    static std::string state_of(const utility& program)
    {
        const ui_driver::dialog window = program.window();
        return girder::to_utf8(window.item(id::status).text() + u", " + window.item(id::start).text()) +
               (window.item(id::start).enabled() ? ", can start" : "") +
               (window.item(id::stop).enabled() ? ", can stop" : "");
    }
    /// What other programs' windows cause by going to the front and leaving it.
    static std::string state_after_activation(const utility& program)
    {
        const HWND window = program.window().handle();
        ui_driver::send(window, WM_ACTIVATE, WA_INACTIVE);
        ui_driver::send(window, WM_ACTIVATE, WA_ACTIVE);
        return state_of(program);
    }
    demo_service service_;
};

TEST_F(service_test, is_installed_started_told_what_is_applied_and_stopped)
{
    // The folder's name has spaces: without quotes, the part before the first would be tried as a program.
    const std::wstring folder = service_.server().parent_path().wstring();
    const std::filesystem::path planted = folder.substr(0, folder.find(L' ')) + L".exe";
    std::filesystem::copy_file(service_.server(), planted, std::filesystem::copy_options::overwrite_existing);
    const utility program(service_.program());
    EXPECT_EQ(state_of(program), not_installed);
    program.control(id::start).click();
    EXPECT_EQ(state_of(program), running);
    EXPECT_EQ(demo_service::state(), DWORD{SERVICE_RUNNING});
    EXPECT_TRUE(eventually([&] { return service_.log().ends_with("started, sharing all ports; auto-discovery on\n"); }))
        << service_.log();

    program.control(id::share_selected).click();
    program.check_ports({3, 10});
    program.control(id::auto_discovery).click();
    program.control(id::apply).click();
    EXPECT_TRUE(eventually([&] { return service_.log().find("reloaded, ") != std::string::npos; }));
    program.control(id::stop).click();
    EXPECT_EQ(state_of(program), stopped);
    EXPECT_EQ(demo_service::state(), DWORD{SERVICE_STOPPED});
    EXPECT_THAT(service_.log(), ContainsRegex("reloaded, sharing COM3 COM10; auto-discovery off\\n.* stopped\\n$"));

    service_.set(L"install", L"exit_code", access_denied);
    program.control(id::start).click();
    EXPECT_EQ(state_of(program), running) << "installed once";
    EXPECT_EQ(program.close(), 0U);
    EXPECT_FALSE(std::filesystem::exists(planted.parent_path() / "tl_server.log")) << "the planted one ran";
    std::filesystem::remove(planted);
}

TEST_F(service_test, activating_the_window_shows_what_others_have_changed)
{
    service_.install();
    const utility program(service_.program());
    EXPECT_EQ(state_of(program), stopped);
    {
        const support::reload_listener server;
        EXPECT_EQ(state_after_activation(program), standalone);
    }
    service_.start();
    EXPECT_EQ(state_of(program), standalone) << "nothing changes by itself";
    EXPECT_EQ(state_after_activation(program), running);
    demo_service::remove();
    EXPECT_EQ(state_after_activation(program), not_installed);
}

TEST_F(service_test, a_slow_start_shows_the_wait_dialog_until_it_ends)
{
    service_.install();
    service_.set(L"service", L"start_ms", 3000);
    const utility program(service_.program());
    const HWND window = program.window().handle();
    const ui_driver::round_trips trips(window);
    const auto begin = clock::now();
    program.control(id::start).post_click();
    const ui_driver::dialog start = program.message(wait_title);
    EXPECT_GE(clock::now() - begin, 450ms);
    EXPECT_LE(clock::now() - begin, 1500ms);
    EXPECT_FALSE(::IsWindowEnabled(window));
    ui_driver::send(window, WM_COMMAND, id::stop);
    EXPECT_TRUE(start.exists()) << "a second command does nothing meanwhile";
    start.wait_until_closed();
    EXPECT_EQ(state_of(program), running);
    EXPECT_LT(trips.longest(), hang);
}

TEST_F(service_test, a_quick_stop_shows_nothing)
{
    service_.install();
    const utility program(service_.program());
    const ui_driver::dialog window = program.window();
    // A service that is still on its way when it is looked at first is looked at again after a second.
    bool quick = false;
    for (int attempt = 0; attempt < 10 && !quick; ++attempt) {
        program.control(id::start).click();
        const auto begin = clock::now();
        window.item(id::stop).post_click();
        bool seen = false;
        EXPECT_TRUE(eventually([&] {
            seen = seen || !ui_driver::find_dialogs(wait_title).empty();
            return window.item(id::status).text() == u"Stopped";
        }));
        quick = clock::now() - begin < 450ms;
        EXPECT_FALSE(quick && seen);
    }
    EXPECT_TRUE(quick);
}

TEST_F(service_test, escape_ends_the_waiting_and_nothing_else)
{
    service_.set(L"install", L"delay_ms", long_enough_ms);
    service_.set(L"service", L"start_ms", an_hour_ms);
    for (const shown expected : {not_installed, stopped}) {
        const utility program(service_.program());
        EXPECT_EQ(state_of(program), expected);
        program.control(id::start).post_click();
        const ui_driver::dialog box = program.message(wait_title);
        ::SetForegroundWindow(box.handle());
        EXPECT_TRUE(eventually([&] { return ::GetForegroundWindow() == box.handle(); }));
        const auto begin = clock::now();
        ui_driver::press_key(VK_ESCAPE);
        box.wait_until_closed();
        EXPECT_LT(clock::now() - begin, 500ms);
        EXPECT_EQ(state_of(program), expected);
        EXPECT_TRUE(ui_driver::find_dialogs(error_title).empty());
        EXPECT_EQ(program.close(), 0U);
        if (expected == not_installed)
            EXPECT_TRUE(!demo_service::exists() && eventually(demo_service::exists)) << "by the process that was left";
    }
    EXPECT_EQ(demo_service::state(), DWORD{SERVICE_START_PENDING});
}

using service_cycles_test = service_test;

TEST_F(service_cycles_test, handles_do_not_grow_over_100_starts_and_stops)
{
    service_.install();
    support::debug_monitor log;
    const utility program(service_.program());
    expect_no_more_handles(log, program, 100, [&] {
        program.control(id::start).click();
        EXPECT_EQ(demo_service::state(), DWORD{SERVICE_RUNNING});
        program.control(id::stop).click();
        EXPECT_EQ(demo_service::state(), DWORD{SERVICE_STOPPED});
    });
    EXPECT_EQ(program.close(), 0U);
}

using action = void (*)(const demo_service& service);
/// An entry of the server's settings: section, name, value.
using behaviour = std::tuple<const wchar_t*, const wchar_t*, unsigned>;
constexpr behaviour good(L"service", L"start_ms", 0);
constexpr behaviour installing_with_1(L"install", L"exit_code", 1);
constexpr behaviour failing_installation(L"install", L"exit_code", access_denied);
constexpr behaviour slow_stop(L"service", L"stop_ms", long_enough_ms);
constexpr behaviour endless_start(L"service", L"start_ms", an_hour_ms);
constexpr behaviour endless_stop(L"service", L"stop_ms", an_hour_ms);
constexpr behaviour failing_start(L"service", L"start_error", ERROR_PORT_UNREACHABLE);

struct outcome_case {
    const char* name;
    bool installed;
    behaviour server;
    action before;    ///< the program is started; may be null
    int button;       ///< 0: none; where it is Stop the service runs
    action meanwhile; ///< while the wait dialog is shown; null: it need not be
    DWORD error;      ///< what the box tells, 0: there is no box
    shown then;
};

class service_outcome_test : public service_test, public testing::WithParamInterface<outcome_case> {};

TEST_P(service_outcome_test, is_shown)
{
    const outcome_case& row = GetParam();
    if (row.installed)
        service_.install();
    std::apply([this](auto... entry) { service_.set(entry...); }, row.server);
    if (row.button == id::stop)
        service_.start();
    if (row.before)
        row.before(service_);
    const utility program(service_.program());
    if (row.button != 0)
        program.control(row.button).post_click();
    if (row.meanwhile) {
        EXPECT_TRUE(program.message(wait_title).exists());
        row.meanwhile(service_);
    }
    if (row.error != 0) {
        const ui_driver::dialog box = program.message(error_title);
        std::array<char, 16> code{};
        std::snprintf(code.data(), code.size(), "(0x%08x)", static_cast<unsigned>(row.error));
        EXPECT_EQ(utility::text_of(box),
                  "Error " + girder::to_utf8(girder::system_message(row.error)) + " " + code.data());
        utility::answer(box, id::ok);
    }
    EXPECT_TRUE(eventually([&] { return state_of(program) == row.then; })) << state_of(program);
    EXPECT_TRUE(ui_driver::find_dialogs(error_title, program.process_id()).empty());
    EXPECT_EQ(program.close(), 0U);
}

void overwrite_server(const demo_service& service)
{
    std::ofstream(service.server(), std::ios::trunc) << "This is no program.";
}

void remove_server(const demo_service& service)
{
    std::filesystem::remove(service.server());
}

/// The program itself in the server's place finds the window and ends at once, without an error.
void replace_server(const demo_service& service)
{
    remove_server(service);
    std::filesystem::copy_file(service.program(), service.server());
}

void delete_service(const demo_service&)
{
    ::DeleteService(open_demo_service().get());
}

void end_service_manager(const demo_service&)
{
    end_processes(L"services.exe");
    ASSERT_TRUE(eventually([] { return !manager_answers(); }));
}

/// The call that starts or stops the service returns soon after the service has been told; nothing shows from outside
/// that only the polling of its state is left.
void end_service_manager_during_polling(const demo_service& service)
{
    std::this_thread::sleep_for(1500ms);
    end_service_manager(service);
}

// Those without service manager have a Wine prefix of their own.
INSTANTIATE_TEST_SUITE_P(
    of, service_outcome_test,
    testing::ValuesIn(std::to_array<outcome_case>({
        {"an_installation_with_a_positive_exit_code", false, installing_with_1, nullptr, id::start, nullptr, 0,
         running},
        {"an_installation_with_a_failure_code", false, failing_installation, nullptr, id::start, nullptr, access_denied,
         not_installed},
        {"an_installation_without_the_server", false, good, remove_server, id::start, nullptr, ERROR_FILE_NOT_FOUND,
         not_installed},
        {"an_installation_by_no_program", false, good, overwrite_server, id::start, nullptr, ERROR_BAD_EXE_FORMAT,
         not_installed},
        {"a_start_of_no_program", true, good, overwrite_server, id::start, nullptr, ERROR_BAD_EXE_FORMAT, stopped},
        {"a_start_of_a_server_that_ends_at_once", true, good, replace_server, id::start, nullptr,
         ERROR_SERVICE_REQUEST_TIMEOUT, stopped},
        {"a_start_that_stops_with_an_error", true, failing_start, nullptr, id::start, nullptr, 0, stopped},
        {"a_stop_during_which_the_service_is_deleted", true, slow_stop, nullptr, id::stop, delete_service, 0,
         not_installed},
        {"an_opening_without_service_manager", true, good, end_service_manager, 0, nullptr, 0, standalone},
        {"a_start_that_goes_on_without_service_manager", true, endless_start, nullptr, id::start,
         end_service_manager_during_polling, 0, standalone},
        {"a_stop_that_goes_on_without_service_manager", true, endless_stop, nullptr, id::stop,
         end_service_manager_during_polling, RPC_S_SERVER_UNAVAILABLE, standalone},
    })),
    support::name_of_row);

} // namespace
