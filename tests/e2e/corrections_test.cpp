#include "base/utf.h"
#include "base/wide.h"
#include "fixture.h"
#include "program_folder.h"
#include "ui_driver/keyboard.h"

#include <windows.h>

#include <commctrl.h>
#include <shlobj.h>

#include <fstream>
#include <iterator>

namespace {

using namespace e2e;
using ui_driver::eventually;
using ui_driver::press_key;

/// The utility in a folder of its own, and the files of corrections in the user's documents.
class corrections_test : public program_folder_test {
protected:
    void SetUp() override
    {
        program_folder_test::SetUp();
        wchar_t* path = nullptr;
        ASSERT_EQ(::SHGetKnownFolderPath(FOLDERID_Documents, KF_FLAG_CREATE, nullptr, &path), S_OK);
        documents_ = path;
        ::CoTaskMemFree(path);
        for (const std::filesystem::path& file : exported())
            std::filesystem::remove(file);
    }

    void switch_on() const { std::ofstream(packs() / "corrections.on"); }

    std::vector<std::filesystem::path> exported() const
    {
        std::vector<std::filesystem::path> files;
        for (const auto& file : std::filesystem::directory_iterator(documents_))
            if (file.path().extension() == ".xml")
                files.push_back(file.path());
        std::ranges::sort(files);
        return files;
    }

    static std::string content_of(const std::filesystem::path& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static LONG width_of(const ui_driver::control& control)
    {
        RECT place{};
        ::GetWindowRect(control.handle(), &place);
        return place.right - place.left;
    }

    /// Presses F2 on a control and answers the box that opens.
    static void correct(const utility& program, int control, const char16_t* key, const char16_t* corrected)
    {
        constexpr int edit = 1024;
        const ui_driver::dialog window = program.window();
        ::SetForegroundWindow(window.handle());
        ui_driver::send(window.handle(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(window.item(control).handle()), TRUE);
        ASSERT_TRUE(eventually([&] { return window.focused() == control; }));
        press_key(VK_F2);
        const ui_driver::dialog box = program.message(key);
        EXPECT_EQ(box.item(edit).text(), window.item(control).text());
        ui_driver::send(box.item(edit).handle(), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(corrected));
        utility::answer(box, id::ok);
        EXPECT_TRUE(eventually([&] { return window.item(control).text() == corrected; }));
    }

private:
    std::filesystem::path documents_;
};

TEST_F(corrections_test, are_made_with_F2_and_written_at_the_end_into_a_file_for_each_module)
{
    switch_on();
    const utility program;
    const LONG before = width_of(program.control(id::share_all));
    correct(program, id::share_all, u"Share all ports", u"All of the ports, every one that there is");
    EXPECT_GT(width_of(program.control(id::share_all)), before) << "laid out again";
    correct(program, id::share_all, u"Share all ports", u"Every more");
    correct(program, id::cancel, u"Cancel", u"Forget it\u2026");
    SYSTEMTIME now{};
    ::GetLocalTime(&now);
    EXPECT_EQ(program.close(), 0U);

    const std::vector<std::filesystem::path> files = exported();
    ASSERT_EQ(files.size(), 2U);
    const std::string day = std::to_string((now.wYear * 100 + now.wMonth) * 100 + now.wDay);
    EXPECT_THAT(files[0].filename().string(), testing::StartsWith("common." + day));
    EXPECT_THAT(files[1].filename().string(), testing::StartsWith("tl_server_config.exe." + day));
    EXPECT_THAT(content_of(files[0]), testing::HasSubstr("<String id=\"Cancel\" value=\"Forget it\xE2\x80\xA6\"/>"));
    EXPECT_THAT(content_of(files[1]), testing::HasSubstr("<String id=\"Share all ports\" value=\"Every more\"/>"));
}

/// The tooltip windows of a process.
int tooltips_of(const utility& program)
{
    int count = 0;
    for (HWND found = nullptr; (found = ::FindWindowExW(nullptr, found, TOOLTIPS_CLASSW, nullptr)) != nullptr;) {
        DWORD process = 0;
        ::GetWindowThreadProcessId(found, &process);
        if (process == program.process_id())
            count += static_cast<int>(ui_driver::send(found, TTM_GETTOOLCOUNT));
    }
    return count;
}

constexpr int of_the_window = 4;

TEST_F(corrections_test, each_control_with_a_string_has_a_tooltip_in_the_mode_and_none_outside_of_it)
{
    {
        const utility program;
        ::SetForegroundWindow(program.window().handle());
        ui_driver::send(program.window().handle(), WM_NEXTDLGCTL,
                        reinterpret_cast<WPARAM>(program.control(id::cancel).handle()), TRUE);
        press_key(VK_F2);
        EXPECT_TRUE(eventually([&] { return tooltips_of(program) == of_the_window; })) << tooltips_of(program);
        EXPECT_EQ(program.close(), 0U) << "no box stands before the window";
    }
    switch_on();
    const utility program;
    constexpr int labels_and_buttons = 14;
    EXPECT_TRUE(eventually([&] { return tooltips_of(program) == of_the_window + labels_and_buttons; }))
        << tooltips_of(program);
    EXPECT_EQ(program.close(), 0U);
    EXPECT_THAT(exported(), testing::IsEmpty()) << "nothing was corrected";
}

} // namespace
