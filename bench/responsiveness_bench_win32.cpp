#include "base/program.h"
#include "base/win32_error.h"
#include "device_database/device_database.h"
#include "harness.h"
#include "ui_driver/polling.h"
#include "ui_driver/round_trips.h"
#include "utility_driver/demo_service.h"
#include "utility_driver/settings_key.h"
#include "utility_driver/utility.h"

#include <windows.h>

#include <wincrypt.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <utility>
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
    std::function<void(const utility& program, ui_driver::round_trips& trips)> run;
    std::chrono::milliseconds aside{};
};

void wait_for_service(const utility& program)
{
    program.message(wait_title).wait_until_closed();
}

void press_and_wait(const utility& program, int button)
{
    program.control(button).post_click();
    wait_for_service(program);
    // The window is there once it is enabled again.
    static_cast<void>(program.window());
}

const std::vector<flow> flows = {
    // Two seconds after the start; the web server does not exist.
    {"the start, and the look for updates", [](const utility&, auto&) { ::Sleep(3000); }},
    {"a choice of ports and Apply",
     [](const utility& program, auto&) {
         program.control(id::share_selected).click();
         program.check_ports({3, 5});
         program.control(id::apply).click();
     }},
    {"another language, answered with No",
     [](const utility& program, auto&) {
         program.choose_language(0);
         utility::answer(program.message(question_title), id::no);
     }},
    {"the About box",
     [](const utility& program, auto&) {
         program.control(id::about).post_click();
         utility::answer(program.message(u"About Tidelink Port Server"), id::cancel);
     }},
    {"the editor of access rights",
     [](const utility& program, auto&) {
         program.control(id::security).post_click();
         utility::answer(program.access_editor(), id::cancel);
     }},
    {"an installation of the service and its start, each behind its first 500 ms",
     [](const utility& program, ui_driver::round_trips& trips) {
         program.control(id::start).post_click();
         wait_for_service(program);
         trips.pause(silent_wait);
         wait_for_service(program);
         static_cast<void>(program.window());
     },
     silent_wait},
    {"a stop of the service, behind its first 500 ms",
     [](const utility& program, auto&) { press_and_wait(program, id::stop); }, silent_wait},
    {"a start of the service, behind its first 500 ms",
     [](const utility& program, auto&) { press_and_wait(program, id::start); }, silent_wait},
};

/// The newer release has an installer that is well signed and no program.
const std::vector<flow> flows_of_update = {
    {"a newer release, found and fetched, until its question",
     [](const utility& program, auto&) { static_cast<void>(program.message(question_title)); }},
    {"its question, answered with Yes, and an installer that cannot be started",
     [](const utility& program, auto&) {
         utility::answer(program.message(question_title), id::yes);
         utility::answer(program.message(error_title), id::ok);
     }},
};

/// The longest round trip of each flow, in milliseconds: of one run after the other.
using figures = std::vector<std::vector<double>>;

void run(const std::vector<flow>& all, const std::u16string& path, figures& longest)
{
    settings_key::remove();
    const utility program(path);
    ui_driver::round_trips trips(program.window().handle());
    longest.resize(all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        trips.begin(all[i].aside);
        all[i].run(program, trips);
        longest[i].push_back(milliseconds(trips.longest()).count());
    }
}

void run_with_service(figures& longest)
{
    const demo_service service;
    service.set(L"install", L"delay_ms", 1500);
    service.set(L"service", L"start_ms", 1500);
    service.set(L"service", L"stop_ms", 1500);
    run(flows, service.program(), longest);
}

void add_ports()
{
    device_database::remove_port_devices();
    for (const char16_t digit : std::u16string_view(u"12345678"))
        device_database::add_port(std::u16string(u"COM") + digit,
                                  std::u16string(u"USB Serial Port (COM") + digit + u')');
}

std::string content_of(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Has the web server for updates, which scripts/bench has started, offer that release, and trusts its authority.
void prepare_update(const std::filesystem::path& server)
{
    const std::string encoded = content_of(server / "authority.der");
    if (!::CertAddEncodedCertificateToSystemStoreW(L"Root", reinterpret_cast<const BYTE*>(encoded.data()),
                                                   static_cast<DWORD>(encoded.size())))
        girder::throw_last_error("CertAddEncodedCertificateToSystemStoreW");
    const std::string scenario = "not_a_program";
    std::ofstream(server / "scenario") << scenario;
    if (!ui_driver::eventually([&] { return content_of(server / "playing") == scenario; }))
        throw ui_driver::timed_out("the web server");
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

} // namespace

int main()
{
    const std::filesystem::path here = girder::program_folder();
    program_under_test = std::filesystem::canonical(here / "../../windows/tl_server_config.exe").u16string();
    server_under_test = (here / "../tools/demo_server/tl_server.exe").u16string();
    add_ports();
    prepare_update(here / "update_server");

    figures longest;
    figures longest_of_update;
    for (int round = 0; round < runs; ++round) {
        run_with_service(longest);
        run(flows_of_update, (here / "tl_server_config_measured.exe").u16string(), longest_of_update);
    }
    bench::report report("Longest round trip of a message to the window");
    for (const auto& [all, found] : {std::pair(&flows, &longest), {&flows_of_update, &longest_of_update}})
        for (std::size_t i = 0; i < all->size(); ++i)
            report.state((*all)[i].name, median((*found)[i]), goal_ms, "ms");
    device_database::remove_port_devices();
    settings_key::remove();
    return report.exit_code();
}
