#include "base/utf.h"
#include "base/win32_error.h"
#include "fixture.h"
#include "support/cases.h"
#include "support/reload_listener.h"
#include "ui_driver/keyboard.h"
#include "ui_driver/polling.h"
#include "ui_driver/round_trips.h"
#include "utility_driver/demo_service.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <optional>
#include <thread>

namespace {

using namespace e2e;
using namespace std::chrono_literals;
using ui_driver::eventually;
using clock = std::chrono::steady_clock;

/// What the main window shows about the service.
struct shown {
    std::u16string status;
    std::u16string start;
    bool can_start = false;
    bool can_stop = false;

    bool operator==(const shown&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const shown& what)
    {
        return out << girder::to_utf8(what.status) << ", " << girder::to_utf8(what.start)
                   << (what.can_start ? "+" : "-") << ", Stop" << (what.can_stop ? "+" : "-");
    }
};

const shown not_installed{.status = u"Not installed", .start = u"&Install", .can_start = true};
const shown standalone_not_installed{.status = u"Running as standalone", .start = u"&Install"};
const shown stopped{.status = u"Stopped", .start = u"&Start", .can_start = true};
const shown stopped_by_others{.status = u"Stopped", .start = u"&Install", .can_start = true};
const shown standalone{.status = u"Running as standalone", .start = u"&Start"};
/// A service that is about to start, where nothing was shown before.
const shown nothing_known{.status = u"", .start = u"&Start", .can_start = true, .can_stop = true};
const shown running{.status = u"Running", .start = u"&Start", .can_stop = true};

constexpr unsigned an_hour_ms = 3'600'000;
constexpr std::uint32_t access_denied = 0x80070005;

/// Looks for the wait dialog all the time, from a thread of its own.
class wait_dialog_watch {
public:
    explicit wait_dialog_watch(DWORD process)
        : watcher_([this, process](const std::stop_token& stop) {
              while (!stop.stop_requested()) {
                  if (!ui_driver::find_dialogs(wait_title, process).empty() && !first_seen_)
                      first_seen_ = clock::now() - begin_;
                  ::Sleep(5);
              }
          })
    {}

    /// How long after the beginning it was seen first. Ends the watch.
    std::optional<clock::duration> first_seen()
    {
        watcher_.request_stop();
        watcher_.join();
        return first_seen_;
    }

private:
    clock::time_point begin_ = clock::now();
    std::optional<clock::duration> first_seen_;
    std::jthread watcher_;
};

/// The text of the box for an error, with the system's own words.
std::string error_text(std::uint32_t code)
{
    std::array<char, 16> digits{};
    std::snprintf(digits.data(), digits.size(), "0x%08x", static_cast<unsigned>(code));
    return "Error " + girder::to_utf8(girder::system_message(code)) + " (" + digits.data() + ")";
}

class service_control_test : public machine_test {
protected:
    static shown state_of(const utility& program)
    {
        const ui_driver::dialog window = program.window();
        return {.status = window.item(id::status).text(),
                .start = window.item(id::start).text(),
                .can_start = window.item(id::start).enabled(),
                .can_stop = window.item(id::stop).enabled()};
    }
    /// What other programs' windows cause by going to the front and leaving it.
    static void activate(const utility& program)
    {
        const HWND window = program.window().handle();
        ui_driver::send(window, WM_ACTIVATE, WA_INACTIVE);
        ui_driver::send(window, WM_ACTIVATE, WA_ACTIVE);
    }
    /// Clicks a button and waits for the end of its operation. \return how long that took
    static clock::duration perform(const utility& program, int button)
    {
        const auto begin = clock::now();
        program.control(button).click();
        return clock::now() - begin;
    }
    static void expect_error(const utility& program, std::uint32_t code)
    {
        const ui_driver::dialog box = program.message(error_title);
        EXPECT_EQ(utility::text_of(box), error_text(code));
        utility::answer(box, id::ok);
    }

    demo_service service_;
};

TEST_F(service_control_test, an_absent_service_is_installed_started_and_stopped)
{
    const utility program(service_.program());
    EXPECT_EQ(state_of(program), not_installed);
    perform(program, id::start);
    EXPECT_EQ(state_of(program), running);
    EXPECT_EQ(demo_service::state(), DWORD{SERVICE_RUNNING});
    perform(program, id::stop);
    EXPECT_EQ(state_of(program), stopped);
    EXPECT_EQ(demo_service::state(), DWORD{SERVICE_STOPPED});
    service_.set(L"install", L"exit_code", access_denied);
    perform(program, id::start);
    EXPECT_EQ(state_of(program), running) << "installed once";
    EXPECT_EQ(program.close(), 0U);
}

TEST_F(service_control_test, activating_the_window_shows_what_others_have_changed)
{
    const utility program(service_.program());
    EXPECT_EQ(state_of(program), not_installed);
    {
        const support::reload_listener server;
        activate(program);
        EXPECT_EQ(state_of(program), standalone_not_installed);
    }
    service_.install();
    EXPECT_EQ(state_of(program), standalone_not_installed) << "nothing changes by itself";
    activate(program);
    EXPECT_EQ(state_of(program), stopped_by_others) << "the caption is reset by an installation from here alone";
    service_.start();
    activate(program);
    EXPECT_EQ(state_of(program).status, running.status);
    EXPECT_TRUE(state_of(program).can_stop);
    demo_service::remove();
    activate(program);
    EXPECT_EQ(state_of(program), not_installed);
}

TEST_F(service_control_test, a_standalone_server_takes_both_buttons)
{
    service_.install();
    const support::reload_listener server;
    const utility program(service_.program());
    EXPECT_EQ(state_of(program), standalone);
}

TEST_F(service_control_test, a_slow_start_and_a_slow_stop_show_the_wait_dialog_until_they_end)
{
    service_.install();
    service_.set(L"service", L"start_ms", 3000);
    service_.set(L"service", L"stop_ms", 1500);
    const utility program(service_.program());
    const HWND window = program.window().handle();
    EXPECT_EQ(state_of(program), stopped);
    const ui_driver::round_trips trips(window);
    {
        wait_dialog_watch watch(program.process_id());
        program.control(id::start).post_click();
        const ui_driver::dialog box = program.message(wait_title);
        EXPECT_FALSE(::IsWindowEnabled(window));
        EXPECT_EQ(::GetWindow(box.handle(), GW_OWNER), window);
        ui_driver::send(window, WM_COMMAND, id::stop);
        EXPECT_TRUE(box.exists()) << "a second command does nothing meanwhile";
        box.wait_until_closed();
        EXPECT_EQ(state_of(program), running);
        const auto seen = watch.first_seen();
        EXPECT_GE(seen, 450ms);
        EXPECT_LE(seen, 1500ms);
    }
    const auto begin = clock::now();
    program.control(id::stop).post_click();
    const ui_driver::dialog box = program.message(wait_title);
    ui_driver::send(window, WM_ACTIVATE, WA_ACTIVE);
    EXPECT_EQ(ui_driver::dialog(window).item(id::status).text(), running.status) << "the end is shown at the end";
    box.wait_until_closed();
    EXPECT_GE(clock::now() - begin, 1500ms);
    EXPECT_LT(clock::now() - begin, 6s) << "looked at once a second";
    EXPECT_EQ(state_of(program), stopped);
    EXPECT_EQ(demo_service::state(), DWORD{SERVICE_STOPPED});
    EXPECT_TRUE(ui_driver::find_dialogs(error_title).empty());
    EXPECT_LT(trips.longest(), hang);
}

TEST_F(service_control_test, a_quick_stop_shows_nothing)
{
    service_.install();
    const utility program(service_.program());
    // A service that is still on its way when it is looked at first is looked at again after a second.
    constexpr int attempts = 10;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        perform(program, id::start);
        wait_dialog_watch watch(program.process_id());
        const auto duration = perform(program, id::stop);
        const bool seen = watch.first_seen().has_value();
        EXPECT_EQ(state_of(program), stopped);
        if (duration < 450ms) {
            EXPECT_FALSE(seen);
            return;
        }
    }
    FAIL() << "no stop was quick";
}

TEST_F(service_control_test, a_failing_installation_is_reported_and_can_be_repeated)
{
    service_.set(L"install", L"exit_code", access_denied);
    const utility program(service_.program());
    program.control(id::start).post_click();
    expect_error(program, access_denied);
    EXPECT_EQ(state_of(program), not_installed);

    std::filesystem::rename(service_.server(), service_.server().wstring() + L".away");
    program.control(id::start).post_click();
    expect_error(program, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(state_of(program), not_installed);

    std::filesystem::rename(service_.server().wstring() + L".away", service_.server());
    service_.set(L"install", L"exit_code", 1);
    perform(program, id::start);
    EXPECT_EQ(state_of(program), running) << "a positive exit code is success";
}

TEST_F(service_control_test, cancelling_an_installation_leaves_it_to_end_by_itself)
{
    service_.set(L"install", L"delay_ms", 2500);
    const utility program(service_.program());
    program.control(id::start).post_click();
    const ui_driver::dialog box = program.message(wait_title);
    ::SetForegroundWindow(box.handle());
    EXPECT_TRUE(eventually([&] { return ::GetForegroundWindow() == box.handle(); }));
    ui_driver::press_key(VK_ESCAPE);
    box.wait_until_closed();
    EXPECT_EQ(state_of(program), not_installed);
    EXPECT_FALSE(demo_service::exists());
    EXPECT_TRUE(ui_driver::find_dialogs(error_title).empty());
    EXPECT_TRUE(eventually([] { return demo_service::exists(); }));
}

TEST_F(service_control_test, a_start_that_never_ends_is_left_by_escape_and_changes_nothing_that_is_shown)
{
    service_.install();
    service_.set(L"service", L"start_ms", an_hour_ms);
    {
        const utility program(service_.program());
        program.control(id::start).post_click();
        const ui_driver::dialog box = program.message(wait_title);
        const auto begin = clock::now();
        ::PostMessageW(box.handle(), WM_KEYDOWN, VK_ESCAPE, 0);
        box.wait_until_closed();
        EXPECT_LT(clock::now() - begin, 500ms);
        EXPECT_EQ(demo_service::state(), DWORD{SERVICE_START_PENDING});
        EXPECT_EQ(state_of(program), stopped);
        EXPECT_TRUE(ui_driver::find_dialogs(error_title).empty());
        EXPECT_EQ(program.close(), 0U);
    }
    const utility started_meanwhile(service_.program());
    EXPECT_EQ(state_of(started_meanwhile), nothing_known);
    demo_service::remove();
    activate(started_meanwhile);
    EXPECT_EQ(state_of(started_meanwhile), not_installed);
}

TEST_F(service_control_test, what_the_service_manager_refuses_is_reported)
{
    service_.install();
    const utility program(service_.program());
    EXPECT_EQ(state_of(program), stopped);
    ::ChangeServiceConfigW(open_demo_service().get(), SERVICE_NO_CHANGE, SERVICE_DISABLED, SERVICE_NO_CHANGE, nullptr,
                           nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    program.control(id::start).post_click();
    expect_error(program, ERROR_SERVICE_DISABLED);
    EXPECT_EQ(state_of(program), stopped);

    demo_service::remove();
    program.control(id::start).post_click();
    expect_error(program, ERROR_SERVICE_DOES_NOT_EXIST);
    EXPECT_EQ(state_of(program), not_installed);
}

TEST_F(service_control_test, a_service_that_stops_while_starting_is_shown_as_stopped)
{
    service_.install();
    service_.set(L"service", L"start_error", ERROR_PORT_UNREACHABLE);
    const utility program(service_.program());
    perform(program, id::start);
    EXPECT_EQ(state_of(program), stopped);
    EXPECT_TRUE(ui_driver::find_dialogs(error_title).empty());
}

struct closing_case {
    const char* name;
    const wchar_t* delay; ///< of the service: what keeps the start waiting
    UINT message;
    WPARAM parameter;
};

class closing_test : public service_control_test, public testing::WithParamInterface<closing_case> {};

TEST_P(closing_test, ends_the_program_at_once)
{
    service_.install();
    service_.set(L"service", GetParam().delay, 8000);
    const utility program(service_.program());
    const HWND window = program.window().handle();
    program.control(id::start).post_click();
    EXPECT_TRUE(program.message(wait_title).exists());
    const auto begin = clock::now();
    ::PostMessageW(window, GetParam().message, GetParam().parameter, 0);
    EXPECT_EQ(program.exit_code(), 0U);
    EXPECT_LT(clock::now() - begin, 1s);
}

INSTANTIATE_TEST_SUITE_P(while_an_operation_is_pending, closing_test,
                         testing::ValuesIn(std::to_array<closing_case>({
                             {"close_box_while_waiting", L"start_ms", WM_CLOSE, 0},
                             {"close_box_during_a_call_that_blocks", L"connect_ms", WM_CLOSE, 0},
                             {"end_of_the_session", L"start_ms", WM_ENDSESSION, TRUE},
                         })),
                         support::name_of_row);

} // namespace
