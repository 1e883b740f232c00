#include "app/about_dialog.h"
#include "dialog_environment.h"
#include "resource.h"
#include "ui/looks.h"
#include "ui/modal_loop.h"
#include "ui/sheet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

using namespace tidelink;

class about_dialog_test : public testing::Test, support::dialog_environment {};

TEST_F(about_dialog_test, shows_its_logo_at_every_dpi)
{
    const support::in_modal_loop looking([](HWND dialog) {
        const HWND logo = ::GetDlgItem(dialog, IDC_ABOUT_LOGO);
        for (const UINT dpi : {96U, 122U, 144U, 192U}) {
            RECT suggested = support::place_of(dialog);
            ::SendMessageW(dialog, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested));
            const SIZE size = support::size_of(logo);
            const support::sheet sheet(size);
            DRAWITEMSTRUCT item{};
            item.CtlID = IDC_ABOUT_LOGO;
            item.hDC = sheet.device();
            item.rcItem = {.left = 0, .top = 0, .right = size.cx, .bottom = size.cy};
            ::SendMessageW(dialog, WM_DRAWITEM, IDC_ABOUT_LOGO, reinterpret_cast<LPARAM>(&item));
            const std::vector<COLORREF> pixels = sheet.pixels();
            for (const COLORREF drawn : {RGB(255, 196, 61), ::GetSysColor(COLOR_BTNFACE)})
                EXPECT_GT(std::ranges::count(pixels, drawn), 50) << std::hex << drawn << " at " << std::dec << dpi;
        }
        ::PostMessageW(::GetFocus(), WM_KEYDOWN, VK_ESCAPE, 0);
    });
    AboutDialog().show(nullptr);
}

} // namespace
