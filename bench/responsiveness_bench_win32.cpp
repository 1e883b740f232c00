#include "base/program.h"
#include "device_database/device_database.h"
#include "harness.h"
#include "ui_driver/round_trips.h"
#include "utility_driver/demo_service.h"
#include "utility_driver/settings_key.h"
#include "utility_driver/utility.h"

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

// How long the program's user-interface thread lets others wait in each flow: the longest round trip of a message that
// is sent to its main window all the time.

namespace {

using namespace utility_driver;
using namespace std::chrono_literals;
using milliseconds = std::chrono::duration<double, std::milli>;

constexpr double goal_ms = 100;
constexpr int runs = 5;
/// For that long an operation that is started is waited for without a box, by design.
constexpr auto silent_wait = 500ms;

struct flow {
    const char* name;
    std::function<void(const utility& program)> run;
    std::chrono::milliseconds aside{};
};

void press_and_wait(const utility& program, int button)
{
    program.control(button).post_click();
    program.message(wait_title).wait_until_closed();
    // The window is there once it is enabled again.
    static_cast<void>(program.window());
}

std::vector<flow> flows()
{
    return {
        // Two seconds after the start; the web server does not exist.
        {"the start, and the look for updates", [](const utility&) { ::Sleep(3000); }},
        {"a choice of ports and Apply",
         [](const utility& program) {
             program.control(id::share_selected).click();
             program.check_ports({3, 5});
             program.control(id::apply).click();
         }},
        {"another language, answered with No",
         [](const utility& program) {
             program.choose_language(0);
             utility::answer(program.message(question_title), id::no);
         }},
        {"the About box",
         [](const utility& program) {
             program.control(id::about).post_click();
             utility::answer(program.message(u"About Tidelink Port Server"), id::cancel);
         }},
        {"the editor of access rights",
         [](const utility& program) {
             program.control(id::security).post_click();
             utility::answer(program.access_editor(), id::cancel);
         }},
        {"a start of the service, behind its first 500 ms",
         [](const utility& program) { press_and_wait(program, id::start); }, silent_wait},
        {"a stop of the service, behind its first 500 ms",
         [](const utility& program) { press_and_wait(program, id::stop); }, silent_wait},
    };
}

void prepare(const demo_service& service)
{
    settings_key::remove();
    device_database::remove_port_devices();
    for (const char16_t digit : std::u16string_view(u"12345678"))
        device_database::add_port(std::u16string(u"COM") + digit,
                                  std::u16string(u"USB Serial Port (COM") + digit + u')');
    service.install();
    service.set(L"service", L"start_ms", 1500);
    service.set(L"service", L"stop_ms", 1500);
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

} // namespace

int main()
{
    const std::filesystem::path built = std::filesystem::path(girder::program_folder()) / "../../windows";
    program_under_test = std::filesystem::canonical(built / "tl_server_config.exe").u16string();
    server_under_test =
        (std::filesystem::path(girder::program_folder()) / "../tools/demo_server/tl_server.exe").u16string();
    const demo_service service;
    prepare(service);

    const std::vector<flow> all = flows();
    std::vector<std::vector<double>> longest(all.size());
    for (int run = 0; run < runs; ++run) {
        settings_key::remove();
        const utility program(service.program());
        ui_driver::round_trips trips(program.window().handle());
        for (std::size_t i = 0; i < all.size(); ++i) {
            trips.begin(all[i].aside);
            all[i].run(program);
            longest[i].push_back(milliseconds(trips.longest()).count());
        }
    }
    bench::report report("Longest round trip of a message to the window");
    for (std::size_t i = 0; i < all.size(); ++i)
        report.state(all[i].name, median(longest[i]), goal_ms, "ms");
    device_database::remove_port_devices();
    settings_key::remove();
    return report.exit_code();
}
