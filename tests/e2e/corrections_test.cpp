#include "program_folder.h"
#include "ui_driver/keyboard.h"

#include <shlobj.h>

namespace {

using namespace e2e;
using ui_driver::eventually;

class corrections_test : public program_folder_test {
protected:
    void SetUp() override
    {
        program_folder_test::SetUp();
        for (const std::filesystem::path& file : exported())
            std::filesystem::remove(file);
    }

    /// The files of corrections in the user's documents.
    static std::vector<std::filesystem::path> exported()
    {
        wchar_t* documents = nullptr;
        ::SHGetKnownFolderPath(FOLDERID_Documents, KF_FLAG_CREATE, nullptr, &documents);
        std::vector<std::filesystem::path> files;
        for (const auto& file : std::filesystem::directory_iterator(documents))
            if (file.path().extension() == ".xml")
                files.push_back(file.path());
        ::CoTaskMemFree(documents);
        std::ranges::sort(files);
        return files;
    }

    static void press_f2(const ui_driver::dialog& window, int control)
    {
        ::SetForegroundWindow(window.handle());
        ui_driver::send(window.handle(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(window.item(control).handle()), TRUE);
        ASSERT_TRUE(eventually([&] { return window.focused() == control; }));
        ui_driver::press_key(VK_F2);
    }
};

TEST_F(corrections_test, are_made_with_F2_in_their_mode_and_written_at_the_end_into_a_file_for_each_module)
{
    {
        const utility program;
        press_f2(program.window(), id::cancel);
        EXPECT_EQ(program.close(), 0U) << "no box stands before the window";
    }
    std::ofstream(packs() / "corrections.on").close();
    const utility program;
    const ui_driver::dialog window = program.window();
    struct correction {
        int control;
        const char16_t* key;
        const char16_t* corrected;
    };
    for (const auto& [control, key, corrected] : {correction{id::share_all, u"Share all ports", u"All of the ports"},
                                                  {id::share_all, u"Share all ports", u"Every more"},
                                                  {id::cancel, u"Cancel", u"Forget it\u2026"}}) {
        constexpr int edit = 1024;
        press_f2(window, control);
        const ui_driver::dialog box = program.message(key);
        EXPECT_EQ(box.item(edit).text(), window.item(control).text());
        ui_driver::send(box.item(edit).handle(), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(corrected));
        utility::answer(box, id::ok);
        EXPECT_TRUE(eventually([&] { return window.item(control).text() == corrected; }));
    }
    EXPECT_EQ(program.close(), 0U);

    const std::vector<std::filesystem::path> files = exported();
    ASSERT_EQ(files.size(), 2U);
    EXPECT_THAT(files[0].filename().string(), testing::StartsWith("common."));
    EXPECT_THAT(files[1].filename().string(), testing::StartsWith("tl_server_config.exe."));
    EXPECT_THAT(content_of(files[0]), testing::HasSubstr("<String id=\"Cancel\" value=\"Forget it\xE2\x80\xA6\"/>"));
    EXPECT_THAT(content_of(files[1]), testing::HasSubstr("<String id=\"Share all ports\" value=\"Every more\"/>"));
}

} // namespace
