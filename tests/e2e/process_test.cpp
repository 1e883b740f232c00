#include "program_folder.h"
#include "ui_driver/round_trips.h"

#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

#include <set>

namespace {

using namespace e2e;

using process_test = machine_test;

TEST_F(process_test, a_second_start_ends_at_once_and_brings_the_window_to_the_front)
{
    const utility first;
    const ui_driver::dialog window = first.window();
    ::ShowWindow(window.handle(), SW_MINIMIZE);

    const utility second;
    EXPECT_EQ(second.exit_code(), 0U);
    EXPECT_TRUE(ui_driver::eventually([&] { return ::GetForegroundWindow() == window.handle(); }));
    EXPECT_TRUE(ui_driver::eventually([&] { return !::IsIconic(window.handle()); }));
    EXPECT_EQ(ui_driver::find_dialogs(main_window_title).size(), 1U);
    EXPECT_EQ(first.close(), 0U);
}

TEST_F(process_test, the_running_marker_is_for_everyone_and_lives_as_long_as_the_program)
{
    const auto marker = [] {
        return girder::unique_kernel_handle(
            ::OpenMutexW(MUTEX_ALL_ACCESS, FALSE, L"Global\\Zelmarkco_TIDELINK_SERVER__Running_Mutex"));
    };
    EXPECT_FALSE(marker());
    const utility program;
    EXPECT_TRUE(program.window().exists());
    girder::unique_local_memory descriptor;
    girder::unique_local_memory text;
    ASSERT_EQ(::GetSecurityInfo(marker().get(), SE_KERNEL_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, nullptr,
                                nullptr, descriptor.put()),
              DWORD{ERROR_SUCCESS});
    ASSERT_TRUE(::ConvertSecurityDescriptorToStringSecurityDescriptorW(
        descriptor.get(), SDDL_REVISION_1, DACL_SECURITY_INFORMATION, reinterpret_cast<wchar_t**>(text.put()),
        nullptr));
    EXPECT_EQ(static_cast<const wchar_t*>(text.get()), std::wstring_view(L"D:(A;;0x1f0001;;;WD)"));
    EXPECT_EQ(program.close(), 0U);
    EXPECT_TRUE(ui_driver::eventually([&] { return !marker(); }));
}

TEST_F(process_test, handles_do_not_grow_over_200_saves)
{
    const support::reload_listener server;
    support::debug_monitor log;
    const utility program;
    int saves = 0;
    expect_no_more_handles(log, program, 200, [&] {
        program.control(id::auto_discovery).click();
        program.control(id::apply).click();
        // Two signals that nobody has taken would be one.
        EXPECT_TRUE(heard(server, ++saves));
    });
    EXPECT_EQ(program.close(), 0U);
}

using whole_program_test = program_folder_test;

// It needs no right to write in its folder.
TEST_F(whole_program_test, answers_and_writes_nothing_beside_itself_whatever_is_done)
{
    const auto entries = [this] {
        std::set<std::pair<std::filesystem::path, std::filesystem::file_time_type>> found;
        for (const auto& each : std::filesystem::recursive_directory_iterator(folder_))
            found.emplace(each.path(), each.last_write_time());
        return found;
    };
    const auto before = entries();
    const utility program;
    const ui_driver::round_trips trips(program.window().handle());
    program.control(id::share_selected).click();
    program.check_ports({3});
    program.control(id::apply).click();
    program.control(id::about).post_click();
    utility::answer(program.message(u"About Tidelink Port Server"), id::cancel);
    program.control(id::security).post_click();
    utility::answer(program.access_editor(), id::cancel);
    program.choose_language(0);
    utility::answer(program.message(question_title), id::no);
    EXPECT_LT(trips.longest(), hang);
    EXPECT_EQ(program.close(), 0U);
    EXPECT_EQ(entries(), before);
}

} // namespace
