// What another program on the machine can try. docs/attack-surface.md says what each attempt may and may not do.

#include "base/handles.h"
#include "base/program.h"
#include "program_folder.h"
#include "ui_driver/remote_memory.h"
#include "ui_driver/round_trips.h"

#include <windows.h>

#include <set>

namespace {

using namespace e2e;
using testing::IsEmpty;
using ui_driver::eventually;

constexpr int about_text = 1018;

/// Messages that carry an address where the system or the program itself sends them, and those that programs number
/// themselves. Nobody can post WM_NOTIFY to another program's window, but in Wine.
void send_addresses(HWND window, HWND view, LPARAM of_memory)
{
    constexpr WPARAM timer_of_update_check = 0x5550;
    constexpr LPARAM no_memory = 0x4141'4141'4141;
    const UINT ui_return = ::RegisterWindowMessageW(L"ZELWM_UIRETURN");
    for (const LPARAM address : {LPARAM{0}, LPARAM{1}, no_memory, of_memory}) {
        const auto callable = static_cast<WPARAM>(address);
        ::PostThreadMessageW(::GetWindowThreadProcessId(window, nullptr), ui_return, callable, 0);
        for (const auto& [message, wparam] : {std::pair(ui_return, callable),
                                              {WM_TIMER, timer_of_update_check},
                                              {WM_TIMER, 1},
                                              {WM_DPICHANGED, MAKEWPARAM(96, 96)},
                                              {WM_INITDIALOG, 0},
                                              {WM_USER + 1, 0},
                                              {WM_USER + 2, 0},
                                              {WM_APP, 0},
                                              {WM_APP + 1, 0}})
            for (const HWND target : {window, view}) {
                ::PostMessageW(target, message, wparam, address);
                ui_driver::send(target, message, wparam, address);
            }
    }
}

void flood_with_commands(HWND window)
{
    const UINT command = ::RegisterWindowMessageW(L"ZEL_WM_PROCESSCOMMAND");
    for (int times = 0; times < 300; ++times) {
        ::PostMessageW(window, WM_COMMAND, id::about, 0);
        ::PostMessageW(window, command, id::security, 0);
    }
    for (WPARAM control = 0; control < 0x10000; control += 7)
        ::PostMessageW(window, WM_COMMAND, control, 0);
    for (const int control : {id::ok, id::cancel, id::apply, id::start, id::auto_discovery})
        ::PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(control), 0);
}

using foreign_message_test = machine_test;

TEST_F(foreign_message_test, run_nothing_and_change_nothing_behind_an_open_box)
{
    const utility program;
    const HWND window = program.window().handle();
    const auto rows = program.list().rows();
    program.control(id::about).post_click();
    const ui_driver::dialog about = program.message(about_title);
    // Run as a callable, it would end the program: a crash in a hook goes unnoticed. kernel32.dll is at the same place.
    const std::vector pattern(8, &::ExitProcess);
    const std::size_t size = pattern.size() * sizeof pattern[0];
    const ui_driver::remote_memory memory(window, size);
    memory.write(static_cast<const void*>(pattern.data()), size);

    send_addresses(window, about.item(about_text).handle(), reinterpret_cast<LPARAM>(memory.address()));
    flood_with_commands(window);
    // Posted behind all of it: the box closes when everything before has been handled.
    utility::answer(about, id::cancel);

    auto after = pattern;
    memory.read(static_cast<void*>(after.data()), size);
    EXPECT_EQ(after, pattern);
    EXPECT_TRUE(ui_driver::find_dialogs(about_title, program.process_id()).empty());
    EXPECT_TRUE(ui_driver::find_dialogs(error_title, program.process_id()).empty());
    EXPECT_EQ(program.list().rows(), rows);
    EXPECT_EQ(program.close(), 0U);
    EXPECT_THAT(settings_key::read(), IsEmpty());
}

/// DLLs that the program, and the system for it, load while it runs. Three cannot be looked at here: Wine's user32.dll
/// itself loads msimg32.dll, uxtheme.dll and version.dll, before the first instruction of the program.
constexpr const wchar_t* planted_names[] = {
    L"aclui.dll",   L"bcrypt.dll",  L"crypt32.dll", L"cryptbase.dll",     L"d2d1.dll",     L"dwmapi.dll",
    L"dwrite.dll",  L"msctf.dll",   L"ntmarta.dll", L"oleacc.dll",        L"profapi.dll",  L"propsys.dll",
    L"secur32.dll", L"userenv.dll", L"wininet.dll", L"windowscodecs.dll", L"wintrust.dll",
};

using whole_program_test = program_folder_test;

// It needs no right to write in its folder, either.
TEST_F(whole_program_test, loads_nothing_from_beside_itself_its_current_folder_or_the_path_and_writes_nothing_there)
{
    for (const wchar_t* const name : planted_names)
        std::filesystem::copy_file(std::filesystem::path(girder::program_folder()) / "libplanted_library.dll",
                                   folder_ / name);
    std::filesystem::current_path(folder_);
    ::SetEnvironmentVariableW(L"PATH", folder_.c_str());
    // Where the folder is looked through, the planted file is what is found.
    ::SetDllDirectoryW(folder_.c_str());
    const HMODULE found = ::LoadLibraryW(L"aclui.dll");
    ::SetDllDirectoryW(nullptr);
    const std::filesystem::path planted = modules_of(::GetCurrentProcessId()).at(L"aclui.dll");
    EXPECT_TRUE(std::filesystem::equivalent(planted.parent_path(), folder_));
    ::FreeLibrary(found);
    const auto files = [this] {
        std::set<std::pair<std::filesystem::path, std::filesystem::file_time_type>> found;
        for (const auto& each : std::filesystem::recursive_directory_iterator(folder_))
            found.emplace(each.path(), each.last_write_time());
        return found;
    };
    const auto before = files();
    const utility program;
    ::SetEnvironmentVariableW(L"PATH", L"C:\\windows\\system32;C:\\windows");
    std::filesystem::current_path(folder_.parent_path());

    const ui_driver::round_trips trips(program.window().handle());
    program.control(id::share_selected).click();
    program.check_ports({3});
    program.control(id::apply).click();
    program.choose_language(0);
    utility::answer(program.message(question_title), id::no);
    program.control(id::about).post_click();
    utility::answer(program.message(about_title), id::cancel);
    program.control(id::security).post_click();
    const ui_driver::dialog editor = program.access_editor();
    const auto modules = [&] { return modules_of(program.process_id()); };
    EXPECT_TRUE(modules().contains(L"aclui.dll"));
    EXPECT_TRUE(eventually([&] { return modules().contains(L"wininet.dll"); })) << "by the look for updates";
    for (const auto& [name, path] : modules())
        if (name != L"tl_server_config.exe")
            EXPECT_FALSE(std::filesystem::equivalent(path.parent_path(), folder_)) << path;
    utility::answer(editor, id::cancel);
    EXPECT_LT(trips.longest(), hang);
    EXPECT_EQ(program.close(), 0U);
    EXPECT_EQ(files(), before);
}

} // namespace
