// Operates the main window of the utility from outside, for scripts:
//
//     ui_driver.exe wait               until the window is there, and brings it to the front
//     ui_driver.exe ports              prints the port list, one row a line, and the share mode
//     ui_driver.exe press ID           presses the button with that control id, and waits for the end of its command
//     ui_driver.exe begin ID           the same without waiting
//     ui_driver.exe service            prints the service's state and its two buttons
//     ui_driver.exe share-only NUMBER  unchecks every port but that one, with the mouse
//     ui_driver.exe close              closes the window and waits until it is gone

#include "base/system_error.h"
#include "base/utf.h"
#include "base/wide.h"
#include "ui_driver/list_view.h"
#include "ui_driver/window.h"

#include <array>
#include <cstdlib>
#include <iostream>
#include <span>
#include <string_view>

namespace {

using namespace ui_driver;

constexpr std::u16string_view main_window = u"Zelmark Tidelink Server Control";
constexpr int service_status = 1001;
constexpr int start_button = 1002;
constexpr int stop_button = 1003;
constexpr int share_all = 1005;
constexpr int share_selected = 1006;
constexpr int port_list = 1007;

using arguments = std::span<wchar_t*>;

long number(const wchar_t* argument)
{
    return std::wcstol(argument, nullptr, 10);
}

void wait(const dialog&, arguments)
{}

void print_ports(const dialog& window, arguments)
{
    for (const int id : {share_all, share_selected}) {
        const control button = window.item(id);
        std::cout << (button.checked() ? "(*) " : "( ) ") << girder::to_utf8(button.text()) << '\n';
    }
    const char* shade = window.item(port_list).enabled() ? "" : "  (disabled)";
    for (const list_row& row : list_view(window.item(port_list)).rows())
        std::cout << (row.checked ? "    [x] " : "    [ ] ") << girder::to_utf8(row.text) << shade << '\n';
}

void press(const dialog& window, arguments rest)
{
    window.item(static_cast<int>(number(rest[0]))).click();
}

void begin(const dialog& window, arguments rest)
{
    window.item(static_cast<int>(number(rest[0]))).post_click();
}

void print_service(const dialog& window, arguments)
{
    std::cout << girder::to_utf8(window.item(service_status).text());
    for (const int id : {start_button, stop_button}) {
        const control button = window.item(id);
        std::cout << "  [" << girder::to_utf8(button.text()) << (button.enabled() ? "]" : "] (disabled)");
    }
    std::cout << '\n';
}

void share_only(const dialog& window, arguments rest)
{
    const list_view list(window.item(port_list));
    int index = 0;
    for (const list_row& row : list.rows()) {
        if (row.checked != (row.parameter == number(rest[0])))
            list.toggle(index);
        ++index;
    }
}

void close(const dialog& window, arguments)
{
    window.post_close();
    window.wait_until_closed();
}

struct command {
    std::wstring_view name;
    std::size_t argument_count;
    void (*run)(const dialog& window, arguments rest);
};

constexpr auto commands = std::to_array<command>({
    {L"wait", 0, wait},
    {L"ports", 0, print_ports},
    {L"press", 1, press},
    {L"begin", 1, begin},
    {L"service", 0, print_service},
    {L"share-only", 1, share_only},
    {L"close", 0, close},
});

} // namespace

int wmain(int argc, wchar_t** argv)
try {
    const arguments given(argv + 1, static_cast<std::size_t>(argc - 1));
    for (const command& candidate : commands) {
        if (!given.empty() && candidate.name == given[0] && candidate.argument_count == given.size() - 1) {
            candidate.run(wait_for_dialog(main_window), given.subspan(1));
            return EXIT_SUCCESS;
        }
    }
    std::cerr << "ui_driver: no such command\n";
    return EXIT_FAILURE;
} catch (const girder::system_error& error) {
    std::cerr << "ui_driver: " << error.what() << " failed with code " << error.code() << '\n';
    return EXIT_FAILURE;
} catch (const std::exception& error) {
    std::cerr << "ui_driver: " << error.what() << '\n';
    return EXIT_FAILURE;
}
