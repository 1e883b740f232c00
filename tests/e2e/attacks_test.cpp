// What another program on the machine can try. docs/attack-surface.md says what each attempt may and may not do.

#include "base/handles.h"
#include "base/program.h"
#include "fixture.h"
#include "program_folder.h"
#include "support/cases.h"
#include "ui_driver/remote_memory.h"
#include "utility_driver/demo_service.h"

#include <windows.h>

#include <tlhelp32.h>

#include <array>

namespace {

using namespace e2e;
using testing::IsEmpty;
using ui_driver::eventually;

constexpr char16_t about_title[] = u"About Tidelink Port Server";
constexpr int about_text = 1018;

struct message_case {
    const char* name;
    /// Posts to the program: its main window, its About box's text view and an address in its memory.
    void (*post)(HWND window, HWND view, LPARAM address);
};

/// The program with its About box open, as another program finds it.
class foreign_message_test : public machine_test, public testing::WithParamInterface<message_case> {};

constexpr std::array<std::uint8_t, 64> pattern = [] {
    std::array<std::uint8_t, 64> bytes{};
    bytes.fill(0xC7);
    return bytes;
}();

TEST_P(foreign_message_test, runs_nothing_and_changes_nothing)
{
    const utility program;
    const ui_driver::dialog window = program.window();
    const auto rows = program.list().rows();
    program.control(id::about).post_click();
    const ui_driver::dialog about = program.message(about_title);
    const HWND view = about.item(about_text).handle();
    const ui_driver::remote_memory memory(window.handle(), pattern.size());
    memory.write(pattern.data(), pattern.size());

    GetParam().post(window.handle(), view, reinterpret_cast<LPARAM>(memory.address()));
    // Posted behind all of it: the box closes when everything before has been handled.
    utility::answer(about, id::cancel);

    std::array<std::uint8_t, pattern.size()> after{};
    memory.read(after.data(), after.size());
    EXPECT_EQ(after, pattern);
    EXPECT_TRUE(ui_driver::find_dialogs(about_title, program.process_id()).empty());
    EXPECT_TRUE(ui_driver::find_dialogs(error_title, program.process_id()).empty());
    EXPECT_EQ(program.list().rows(), rows);
    EXPECT_EQ(program.close(), 0U);
    EXPECT_THAT(settings_key::read(), IsEmpty());
}

constexpr LPARAM no_memory = 0x4141'4141'4141;

UINT ui_return()
{
    return ::RegisterWindowMessageW(L"ZELWM_UIRETURN");
}

void post_callables(HWND window, HWND, LPARAM address)
{
    const DWORD thread = ::GetWindowThreadProcessId(window, nullptr);
    for (const LPARAM pointer : {LPARAM{0}, LPARAM{1}, no_memory, address}) {
        ::PostThreadMessageW(thread, ui_return(), static_cast<WPARAM>(pointer), 0);
        ::PostMessageW(window, ui_return(), static_cast<WPARAM>(pointer), 0);
        ui_driver::send(window, ui_return(), static_cast<WPARAM>(pointer));
    }
}

void post_timers(HWND window, HWND, LPARAM address)
{
    constexpr WPARAM timer_of_update_check = 0x5550;
    for (const LPARAM callback : {LPARAM{0}, no_memory, address})
        for (const WPARAM timer : {timer_of_update_check, WPARAM{1}})
            for (int times = 0; times < 3; ++times)
                ::PostMessageW(window, WM_TIMER, timer, callback);
}

void flood_with_commands(HWND window, HWND, LPARAM)
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

void send_copied_data(HWND window, HWND view, LPARAM)
{
    std::vector<std::uint8_t> bytes(100'000, 0x41);
    COPYDATASTRUCT data{.dwData = ui_return(), .cbData = static_cast<DWORD>(bytes.size()), .lpData = bytes.data()};
    for (const HWND target : {window, view})
        ui_driver::send(target, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data));
}

/// A message that carries an address where the system sends it, and those that programs number themselves. Nobody can
/// post WM_NOTIFY to another program's window, but in Wine.
void post_addresses(HWND window, HWND view, LPARAM address)
{
    for (const HWND target : {window, view})
        for (const LPARAM pointer : {no_memory, address})
            for (const UINT message :
                 {UINT{WM_DPICHANGED}, UINT{WM_USER + 1}, UINT{WM_USER + 2}, UINT{WM_APP}, UINT{WM_APP + 1}})
                ::PostMessageW(target, message, MAKEWPARAM(96, 96), pointer);
}

void initialise_again(HWND window, HWND, LPARAM address)
{
    ui_driver::send(window, WM_INITDIALOG, 0, address);
    ::PostMessageW(window, WM_INITDIALOG, 0, no_memory);
}

INSTANTIATE_TEST_SUITE_P(attempts, foreign_message_test,
                         testing::ValuesIn(std::to_array<message_case>({
                             {"callables_at_made_up_addresses", post_callables},
                             {"timers_with_callbacks", post_timers},
                             {"a_flood_of_commands", flood_with_commands},
                             {"copied_data", send_copied_data},
                             {"addresses_to_read_and_write", post_addresses},
                             {"initialising_again", initialise_again},
                         })),
                         support::name_of_row);

/// DLLs that the program, and the system for it, load while it runs. Three cannot be looked at here: Wine's user32.dll
/// itself loads msimg32.dll, uxtheme.dll and version.dll, before the first instruction of the program.
constexpr const wchar_t* planted_names[] = {
    L"aclui.dll",   L"bcrypt.dll",  L"crypt32.dll", L"cryptbase.dll",     L"d2d1.dll",     L"dwmapi.dll",
    L"dwrite.dll",  L"msctf.dll",   L"ntmarta.dll", L"oleacc.dll",        L"profapi.dll",  L"propsys.dll",
    L"secur32.dll", L"userenv.dll", L"wininet.dll", L"windowscodecs.dll", L"wintrust.dll",
};

std::vector<std::filesystem::path> modules_of(DWORD process)
{
    std::vector<std::filesystem::path> modules;
    const girder::unique_file snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, process));
    MODULEENTRY32W module{};
    module.dwSize = sizeof module;
    for (BOOL more = ::Module32FirstW(snapshot.get(), &module); more; more = ::Module32NextW(snapshot.get(), &module))
        modules.emplace_back(static_cast<const wchar_t*>(module.szExePath));
    return modules;
}

/// The folder of the program is also the current one and the first of PATH.
class planted_library_test : public program_folder_test {
protected:
    void SetUp() override
    {
        program_folder_test::SetUp();
        folder_ = std::filesystem::path(program_under_test).parent_path();
        for (const wchar_t* const name : planted_names)
            std::filesystem::copy_file(std::filesystem::path(girder::program_folder()) / "libplanted_library.dll",
                                       folder_ / name);
        previous_folder_ = std::filesystem::current_path();
        std::filesystem::current_path(folder_);
        ::SetEnvironmentVariableW(L"PATH", folder_.c_str());
    }
    void TearDown() override
    {
        ::SetEnvironmentVariableW(L"PATH", L"C:\\windows\\system32;C:\\windows");
        std::filesystem::current_path(previous_folder_);
        program_folder_test::TearDown();
    }

    bool loaded(const utility& program, const wchar_t* name) const
    {
        return std::ranges::any_of(modules_of(program.process_id()), [name](const std::filesystem::path& module) {
            return ::_wcsicmp(module.filename().c_str(), name) == 0;
        });
    }

    std::filesystem::path folder_;

private:
    std::filesystem::path previous_folder_;
};

TEST_F(planted_library_test, none_is_loaded_by_what_the_program_does)
{
    // Where its folder is looked through, the planted file is what is found.
    ::SetDllDirectoryW(folder_.c_str());
    const HMODULE found = ::LoadLibraryW(L"aclui.dll");
    ::SetDllDirectoryW(nullptr);
    ASSERT_TRUE(found);
    std::array<wchar_t, MAX_PATH> path{};
    ::GetModuleFileNameW(found, path.data(), path.size());
    EXPECT_TRUE(std::filesystem::equivalent(std::filesystem::path(path.data()).parent_path(), folder_));
    ::FreeLibrary(found);

    const utility program;
    program.control(id::about).post_click();
    utility::answer(program.message(about_title), id::cancel);
    program.control(id::security).post_click();
    const ui_driver::dialog editor = program.access_editor();
    EXPECT_TRUE(loaded(program, L"aclui.dll"));
    EXPECT_TRUE(eventually([&] { return loaded(program, L"wininet.dll"); })) << "by the look for updates";
    for (const std::filesystem::path& module : modules_of(program.process_id()))
        if (module.filename() != L"tl_server_config.exe")
            EXPECT_FALSE(std::filesystem::equivalent(module.parent_path(), folder_)) << module;
    utility::answer(editor, id::cancel);
    EXPECT_EQ(program.close(), 0U);
}

using planted_server_test = machine_test;

// The folder's name has spaces: without quotes, the part before the first would be tried as a program.
TEST_F(planted_server_test, a_program_named_like_a_part_of_the_path_is_not_the_one_that_is_installed)
{
    const demo_service service;
    const std::filesystem::path folder = service.server().parent_path();
    const std::wstring whole = folder.wstring();
    const std::filesystem::path planted = whole.substr(0, whole.find(L' ')) + L".exe";
    std::filesystem::remove(planted);
    std::filesystem::copy_file(service.server(), planted);

    const utility program(service.program());
    program.control(id::start).click();
    EXPECT_EQ(program.control(id::status).text(), u"Running");
    EXPECT_THAT(service.log(), testing::HasSubstr(" started, "));
    EXPECT_FALSE(std::filesystem::exists(planted.parent_path() / "tl_server.log"));
    EXPECT_EQ(program.close(), 0U);
    std::filesystem::remove(planted);
}

} // namespace
