#include "base/win32_error.h"
#include "fixture.h"
#include "ui_driver/polling.h"

#include <cstdio>
#include <fstream>

namespace {

using namespace e2e;
using ui_driver::eventually;

constexpr char opened_file[] = "C:\\opened_address.txt";

/// Makes the system open https addresses by writing them to a file.
class recorded_shell {
public:
    recorded_shell()
    {
        static constexpr wchar_t command[] = L"C:\\windows\\system32\\cmd.exe /c echo %1> C:\\opened_address.txt";
        std::remove(opened_file);
        const LSTATUS status = ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, key, nullptr, REG_SZ, command, sizeof command);
        if (status != ERROR_SUCCESS)
            girder::throw_win32(static_cast<DWORD>(status), "RegSetKeyValueW");
        ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\https", L"URL Protocol", REG_SZ, L"", 2);
    }
    recorded_shell(const recorded_shell&) = delete;
    recorded_shell& operator=(const recorded_shell&) = delete;
    ~recorded_shell() { ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\https"); }

    static std::string opened()
    {
        std::ifstream file(opened_file);
        std::string line;
        std::getline(file, line);
        while (!line.empty() && (line.back() == '\r' || line.back() == ' '))
            line.pop_back();
        return line;
    }

private:
    static constexpr wchar_t key[] = L"Software\\Classes\\https\\shell\\open\\command";
};

class about_test : public machine_test {};

TEST_F(about_test, shows_the_version_and_asks_the_shell_for_the_link)
{
    constexpr int about_text = 1018;
    constexpr int about_link = 1019;
    const recorded_shell shell;
    const utility program;
    program.control(id::about).post_click();
    const ui_driver::dialog about = program.message(u"About Tidelink Port Server");
    EXPECT_NE(about.item(about_text).text().find(u"\nVersion 7.01.00.1604\n"), std::u16string::npos);

    const HWND link = about.item(about_link).handle();
    const LPARAM place = MAKELPARAM(8, 6);
    ::PostMessageW(link, WM_LBUTTONDOWN, MK_LBUTTON, place);
    ::PostMessageW(link, WM_LBUTTONUP, 0, place);
    EXPECT_TRUE(eventually([] { return !recorded_shell::opened().empty(); }));
    EXPECT_EQ(recorded_shell::opened(), "https://www.zelmark.example");

    utility::answer(about, id::cancel);
    EXPECT_EQ(program.close(), 0U);
}

} // namespace
