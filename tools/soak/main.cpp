// soak.exe PROGRAM STAND-IN-SERVER MINUTES: uses one run of the program in every way, again and again, and looks at
// what it holds. Ends with 0 when it holds as much at the end as after the first minute, give or take 2 %.

#include "base/handles.h"
#include "base/utf.h"
#include "base/win32_error.h"
#include "device_database/device_database.h"
#include "handle_figures/handle_figures.h"
#include "static_controls.h"
#include "ui_driver/polling.h"
#include "utility_driver/demo_service.h"
#include "utility_driver/processes.h"
#include "utility_driver/settings_key.h"
#include "utility_driver/utility.h"

#include <windows.h>

#include <psapi.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string_view>
#include <vector>

namespace {

using namespace utility_driver;
using namespace std::chrono_literals;
using clock = std::chrono::steady_clock;

struct figure {
    const char* name;
    std::size_t value = SIZE_MAX;
    bool judged = true;
};
using figures = std::array<figure, 6>;

/// What is committed for the process alone, by the map of its address space. The counter of the system would count in
/// Wine also what the display's software renderer takes beneath that map.
std::size_t committed_kilobytes(HANDLE process)
{
    std::size_t committed = 0;
    MEMORY_BASIC_INFORMATION region{};
    for (const std::byte* at = nullptr; ::VirtualQueryEx(process, at, &region, sizeof region) != 0;
         at = static_cast<const std::byte*>(region.BaseAddress) + region.RegionSize)
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE)
            committed += region.RegionSize;
    return committed / 1024;
}

std::size_t counted_kilobytes(HANDLE process)
{
    PROCESS_MEMORY_COUNTERS memory{};
    if (!::GetProcessMemoryInfo(process, &memory, sizeof memory))
        girder::throw_last_error("GetProcessMemoryInfo");
    return memory.PagefileUsage / 1024;
}

/// The least of each over some seconds, in which the threads of the pool end that have nothing left to do.
/// \param kept  kilobytes that the system keeps of static controls that are gone
figures look_at(const utility& program, std::size_t kept)
{
    figures least{{{.name = "handles"},
                   {.name = "GDI objects"},
                   {.name = "mark of USER objects"},
                   {.name = "committed KiB less those the system keeps of static controls"},
                   {.name = "KiB that it keeps", .judged = false},
                   {.name = "KiB by the system's counter", .judged = false}}};
    for (const auto until = clock::now() + 12s; clock::now() < until; ::Sleep(500)) {
        const std::size_t committed = committed_kilobytes(program.process());
        const std::array<std::size_t, least.size()> now{handle_figures::handle_count(program.process_id()),
                                                        handle_figures::gdi_object_count(program.process()),
                                                        handle_figures::handle_marks()[2],
                                                        committed - kept,
                                                        kept,
                                                        counted_kilobytes(program.process())};
        for (std::size_t i = 0; i < now.size(); ++i)
            least.at(i).value = std::min(least.at(i).value, now.at(i));
    }
    return least;
}

void print(const figures& what, long long seconds, int rounds)
{
    std::cout << seconds << " s, " << rounds << " rounds:";
    for (const figure& each : what)
        std::cout << "  " << each.name << ' ' << each.value;
    std::cout << '\n' << std::flush;
}

/// Now and then, on a busy machine, Wine gets a process not started, or one that stopped not ended, which the program
/// tells in a box. \return whether it went well
bool press(const utility& program, int button, int enabled_then)
{
    const ui_driver::dialog window = program.window();
    window.item(button).post_click();
    bool failed = false;
    const auto ended = [&] {
        for (const ui_driver::dialog& box : ui_driver::find_dialogs(error_title, program.process_id())) {
            std::cout << utility::text_of(box) << '\n';
            utility::answer(box, id::ok);
            failed = true;
        }
        return failed || window.item(enabled_then).enabled();
    };
    if (!ui_driver::eventually(ended))
        throw ui_driver::timed_out("the service");
    return !failed;
}

struct flow {
    std::string_view name;
    void (*run)(const utility& program, int round);
};

constexpr flow flows[] = {
    {"update",
     [](const utility& program, int) {
         constexpr WPARAM timer_of_update_check = 0x5550;
         ::PostMessageW(program.window().handle(), WM_TIMER, timer_of_update_check, 0);
     }},
    {"apply",
     [](const utility& program, int) {
         program.control(id::auto_discovery).click();
         program.list().toggle(1);
         program.control(id::apply).click();
     }},
    {"about",
     [](const utility& program, int) {
         program.control(id::about).post_click();
         utility::answer(program.message(u"About Tidelink Port Server"), id::cancel);
     }},
    {"access",
     [](const utility& program, int) {
         program.control(id::security).post_click();
         utility::answer(program.access_editor(), id::cancel);
     }},
    {"language",
     [](const utility& program, int round) {
         program.choose_language(1 + round % 2);
         utility::answer(program.message(question_title), id::no);
     }},
    {"service",
     [](const utility& program, int) {
         if (!press(program, id::start, id::stop) || !press(program, id::stop, id::start))
             end_processes(L"tl_server.exe");
     }},
};

/// Says what was done, and what the program shows, when it does not go on.
void run(const flow& what, const utility& program, int round)
{
    try {
        what.run(program, round);
    } catch (const ui_driver::timed_out&) {
        std::cout << what.name << ", round " << round << '\n';
        for (const char16_t* const title : {error_title, wait_title, question_title})
            for (const ui_driver::dialog& box : ui_driver::find_dialogs(title, program.process_id()))
                std::cout << girder::to_utf8(title) << ": "
                          << (box.has(id::message_text) ? utility::text_of(box) : std::string()) << '\n';
        throw;
    }
}

bool within_two_percent(const figure& last, const figure& first)
{
    const auto difference = static_cast<long long>(last.value) - static_cast<long long>(first.value);
    return std::llabs(difference) * 50 <= static_cast<long long>(first.value);
}

void prepare(const demo_service& service)
{
    settings_key::remove();
    device_database::remove_port_devices();
    for (const std::u16string port : {u"COM1", u"COM3", u"COM7"})
        device_database::add_port(port, u"USB Serial Port (" + port + u")");
    std::filesystem::copy(std::filesystem::path(program_under_test).parent_path() / "../../languages",
                          std::filesystem::path(service.program()).parent_path() / "languages");
    service.install();
    // Longer than the half second behind which "Please Wait" appears, so that it lives long enough to be counted.
    for (const wchar_t* const delay : {L"start_ms", L"stop_ms"})
        service.set(L"service", delay, 800);
}

bool stays_steady(std::chrono::minutes duration, std::string_view only)
{
    const demo_service service;
    prepare(service);
    const utility program(service.program());
    const std::size_t bytes_kept_for_each = soak::bytes_kept_for_a_static_control();
    const soak::static_control_counter static_controls(program.process_id());
    program.control(id::share_selected).click();
    const auto begin = clock::now();
    const auto seconds = [begin] {
        return std::chrono::duration_cast<std::chrono::seconds>(clock::now() - begin).count();
    };
    int rounds = 0;
    const auto use_until = [&](clock::time_point until) {
        // A busy machine gets nowhere in a minute: what the system keeps for good is there after so many rounds.
        constexpr int first_rounds = 50;
        for (; clock::now() < until || rounds < first_rounds; ++rounds)
            for (const flow& each : flows)
                if (only.empty() || only == each.name)
                    run(each, program, rounds);
        const figures now = look_at(program, static_controls.count() * bytes_kept_for_each / 1024);
        print(now, seconds(), rounds);
        return now;
    };
    const figures first = use_until(begin + 1min);
    figures last = first;
    const auto end = begin + duration;
    for (auto next = begin + 1min; next < end;) {
        next = std::min(next + std::max<clock::duration>(1min, duration / 12), end);
        last = use_until(next);
    }
    bool steady = true;
    for (std::size_t i = 0; i < first.size(); ++i)
        if (first.at(i).judged && !within_two_percent(last.at(i), first.at(i))) {
            std::cout << first.at(i).name << ": " << first.at(i).value << " after the first minute, "
                      << last.at(i).value << " at the end\n";
            steady = false;
        }
    return program.close() == 0 && steady;
}

} // namespace

int main(int argc, char** argv)
try {
    if (argc != 4 && argc != 5) {
        std::cerr << "soak: which program, which server, how many minutes?\n";
        return EXIT_FAILURE;
    }
    program_under_test = std::filesystem::absolute(argv[1]).u16string();
    server_under_test = std::filesystem::absolute(argv[2]).u16string();
    const std::chrono::minutes duration(std::strtol(argv[3], nullptr, 10));
    return stays_steady(duration, argc == 5 ? argv[4] : "") ? EXIT_SUCCESS : EXIT_FAILURE;
} catch (const std::exception& error) {
    std::cerr << "soak: " << error.what() << '\n';
    return EXIT_FAILURE;
}
