#include "base/program.h"
#include "demo_service.h"
#include "device_database/device_database.h"
#include "harness.h"
#include "settings_key.h"
#include "ui_driver/polling.h"
#include "utility.h"

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// How long the program's user-interface thread lets others wait in each flow: the longest round trip of a message that
// is sent to its main window all the time.

namespace {

using namespace e2e;
using namespace std::chrono_literals;
using clock = std::chrono::steady_clock;
using milliseconds = std::chrono::duration<double, std::milli>;

constexpr double goal_ms = 100;
constexpr int runs = 5;
constexpr DWORD patience_ms = 20'000;
/// For that long an operation that is started is waited for without a box, by design.
constexpr auto silent_wait = 500ms;

/// Sends WM_NULL to a window all the time, from a thread of its own.
class probe {
public:
    explicit probe(HWND window) : thread_([this, window](const std::stop_token& stop) { watch(window, stop); }) {}

    /// From now on; what is under way counts from here. \param pause  what does not count at the beginning
    void begin(clock::duration pause = {})
    {
        const std::lock_guard guard(lock_);
        counted_from_ = clock::now() + pause;
        longest_ = {};
    }
    milliseconds longest()
    {
        // What is under way belongs to the flow, too.
        const auto asked = clock::now();
        const auto later_trip_has_ended = [&] {
            const std::lock_guard guard(lock_);
            return last_begin_ > asked;
        };
        ui_driver::eventually(later_trip_has_ended);
        const std::lock_guard guard(lock_);
        return longest_;
    }

private:
    void watch(HWND window, const std::stop_token& stop)
    {
        while (!stop.stop_requested()) {
            const auto begin = clock::now();
            DWORD_PTR result = 0;
            ::SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, patience_ms, &result);
            const std::lock_guard guard(lock_);
            last_begin_ = begin;
            longest_ = std::max(longest_, milliseconds(clock::now() - std::max(begin, counted_from_)));
            ::Sleep(1);
        }
    }

    std::mutex lock_;
    clock::time_point counted_from_ = clock::now();
    clock::time_point last_begin_;
    milliseconds longest_{};
    std::jthread thread_;
};

struct flow {
    const char* name;
    std::function<void(const utility& program)> run;
    clock::duration pause = {};
};

void wait_until_enabled(const utility& program)
{
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
        {"another language, answered with No",
         [](const utility& program) {
             program.choose_language(0);
             utility::answer(program.message(question_title), id::no);
         }},
        {"a start of the service, behind its first 500 ms",
         [](const utility& program) {
             program.control(id::start).post_click();
             program.message(wait_title).wait_until_closed();
             wait_until_enabled(program);
         },
         silent_wait},
        {"a stop of the service, behind its first 500 ms",
         [](const utility& program) {
             program.control(id::stop).post_click();
             program.message(wait_title).wait_until_closed();
             wait_until_enabled(program);
         },
         silent_wait},
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
        probe watched(program.window().handle());
        for (std::size_t i = 0; i < all.size(); ++i) {
            watched.begin(all[i].pause);
            all[i].run(program);
            longest[i].push_back(watched.longest().count());
        }
    }
    bench::report report("Longest round trip of a message to the window");
    for (std::size_t i = 0; i < all.size(); ++i)
        report.state(all[i].name, median(longest[i]), goal_ms, "ms");
    device_database::remove_port_devices();
    settings_key::remove();
    return report.exit_code();
}
