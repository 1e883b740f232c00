#include "fixture.h"

namespace {

using namespace e2e;

using about_test = machine_test;

TEST_F(about_test, shows_the_version_and_asks_the_shell_for_the_link)
{
    constexpr int about_text = 1018;
    constexpr int about_link = 1019;
    // Has the system open https addresses by writing them to a file.
    constexpr wchar_t scheme[] = L"Software\\Classes\\https";
    constexpr wchar_t command[] = L"C:\\windows\\system32\\cmd.exe /c echo %1> C:\\opened_address.txt";
    const std::filesystem::path opened = L"C:\\opened_address.txt";
    std::filesystem::remove(opened);
    ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\https\\shell\\open\\command", nullptr, REG_SZ, command,
                      sizeof command);
    ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, scheme, L"URL Protocol", REG_SZ, L"", sizeof L"");

    const utility program;
    program.control(id::about).post_click();
    const ui_driver::dialog about = program.message(about_title);
    EXPECT_NE(about.item(about_text).text().find(u"\nVersion 7.01.00.1604\n"), std::u16string::npos);
    const HWND link = about.item(about_link).handle();
    const LPARAM place = MAKELPARAM(8, 6);
    ::PostMessageW(link, WM_LBUTTONDOWN, MK_LBUTTON, place);
    ::PostMessageW(link, WM_LBUTTONUP, 0, place);
    EXPECT_TRUE(ui_driver::eventually([&] { return content_of(opened) == "https://www.zelmark.example\r\n"; }))
        << content_of(opened);

    utility::answer(about, id::cancel);
    EXPECT_EQ(program.close(), 0U);
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, scheme);
}

} // namespace
