#include "utility_driver/utility.h"

#include "base/utf.h"
#include "base/wide.h"
#include "base/win32_error.h"
#include "ui_driver/polling.h"

#include <algorithm>

namespace utility_driver {

using ui_driver::timed_out;

namespace {

/// Wine on a busy machine fails now and then with ERROR_INTERNAL_ERROR, before the new process has run.
PROCESS_INFORMATION start(const std::u16string& command_line)
{
    constexpr int attempts = 3;
    std::u16string buffer = command_line;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    for (int attempt = 1; !::CreateProcessW(nullptr, girder::as_wide(buffer.data()), nullptr, nullptr, FALSE, 0,
                                            nullptr, nullptr, &startup, &started);
         ++attempt) {
        const DWORD code = ::GetLastError();
        if (code != ERROR_INTERNAL_ERROR || attempt == attempts)
            girder::throw_win32(code, "CreateProcessW");
    }
    return started;
}

} // namespace

std::u16string program_under_test;
std::u16string server_under_test;

utility::utility(const std::u16string& program)
{
    const PROCESS_INFORMATION started = start(u'"' + program + u"\" --handed to a restart");
    const girder::unique_kernel_handle thread(started.hThread);
    process_.reset(started.hProcess);
    id_ = started.dwProcessId;
}

utility::~utility()
{
    if (::WaitForSingleObject(process_.get(), 0) != WAIT_OBJECT_0) {
        ::TerminateProcess(process_.get(), 1);
        ::WaitForSingleObject(process_.get(), static_cast<DWORD>(ui_driver::patience.count()));
    }
}

ui_driver::dialog utility::window() const
{
    return ui_driver::wait_for_dialog(main_window_title, id_);
}

std::vector<int> utility::checked_ports() const
{
    std::vector<int> numbers;
    for (const ui_driver::list_row& row : list().rows())
        if (row.checked)
            numbers.push_back(static_cast<int>(row.parameter));
    return numbers;
}

void utility::check_ports(const std::vector<int>& numbers) const
{
    int index = 0;
    for (const ui_driver::list_row& row : list().rows()) {
        if (row.checked != (std::ranges::find(numbers, row.parameter) != numbers.end()))
            list().toggle(index);
        ++index;
    }
}

void utility::choose_language(int entry) const
{
    const HWND combo = control(id::language).handle();
    ui_driver::send(combo, CB_SETCURSEL, static_cast<WPARAM>(entry));
    ::PostMessageW(window().handle(), WM_COMMAND, MAKEWPARAM(id::language, CBN_SELCHANGE),
                   reinterpret_cast<LPARAM>(combo));
}

ui_driver::dialog utility::message(const char16_t* title) const
{
    return ui_driver::wait_for_dialog(title, id_);
}

ui_driver::dialog utility::access_editor() const
{
    HWND editor = nullptr;
    const auto is_open = [&] {
        for (const ui_driver::dialog& main : ui_driver::find_dialogs(main_window_title, id_))
            for (HWND window = nullptr; (window = ::FindWindowExW(nullptr, window, nullptr, nullptr)) != nullptr;)
                if (::GetWindow(window, GW_OWNER) == main.handle() && ::IsWindowVisible(window) &&
                    ::IsWindowEnabled(window) && !::IsWindowEnabled(main.handle()))
                    editor = window;
        return editor != nullptr;
    };
    if (!ui_driver::eventually(is_open))
        throw timed_out("no editor");
    return ui_driver::dialog(editor);
}

std::string utility::text_of(const ui_driver::dialog& box)
{
    return girder::to_utf8(box.item(id::message_text).text());
}

void utility::answer(const ui_driver::dialog& box, int button)
{
    box.item(button).post_click();
    box.wait_until_closed();
}

DWORD utility::exit_code() const
{
    if (::WaitForSingleObject(process_.get(), static_cast<DWORD>(ui_driver::patience.count())) != WAIT_OBJECT_0)
        throw timed_out("the program does not end");
    DWORD code = 0;
    ::GetExitCodeProcess(process_.get(), &code);
    return code;
}

DWORD utility::close() const
{
    window().post_close();
    return exit_code();
}

} // namespace utility_driver
