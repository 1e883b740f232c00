#include "app/about_dialog.h"
#include "dialog_environment.h"
#include "resource.h"
#include "ui/looks.h"
#include "ui/modal_loop.h"
#include "ui/rich_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

using namespace tidelink;

class about_dialog_test : public testing::Test, support::dialog_environment {};

TEST_F(about_dialog_test, text_shows_name_version_and_notice)
{
    const girder::ui::rich_text about =
        girder::ui::parse_markup(about_text({.major = 7, .minor = 1, .build = 345, .revision = 1604}));
    EXPECT_EQ(about.text, u"Zelmark Tidelink Port Server\nVersion 7.01.345.1604\n\nCopyright © Zelmark\n"
                          u"All rights reserved.\nhttps://www.zelmark.example");
    EXPECT_TRUE(about.runs.front().style.bold);
    EXPECT_EQ(about.runs.front().style.percent, 120);
}

/// The colours of the pixels that the box shows over the logo.
std::set<COLORREF> colours_of_logo(HWND logo)
{
    std::set<COLORREF> colours;
    const SIZE size = support::size_of(logo);
    const HDC screen = ::GetDC(nullptr);
    const HDC device = ::CreateCompatibleDC(screen);
    const HBITMAP bitmap = ::CreateCompatibleBitmap(screen, size.cx, size.cy);
    const HGDIOBJ before = ::SelectObject(device, bitmap);
    DRAWITEMSTRUCT item{};
    item.CtlID = IDC_ABOUT_LOGO;
    item.hDC = device;
    item.rcItem = {.left = 0, .top = 0, .right = size.cx, .bottom = size.cy};
    ::SendMessageW(::GetParent(logo), WM_DRAWITEM, IDC_ABOUT_LOGO, reinterpret_cast<LPARAM>(&item));
    for (int y = 0; y < size.cy; ++y)
        for (int x = 0; x < size.cx; ++x)
            colours.insert(::GetPixel(device, x, y));
    ::SelectObject(device, before);
    ::DeleteObject(bitmap);
    ::DeleteDC(device);
    ::ReleaseDC(nullptr, screen);
    return colours;
}

bool is_near(COLORREF a, COLORREF b)
{
    constexpr int tolerance = 12;
    return std::abs(GetRValue(a) - GetRValue(b)) <= tolerance && std::abs(GetGValue(a) - GetGValue(b)) <= tolerance &&
           std::abs(GetBValue(a) - GetBValue(b)) <= tolerance;
}

TEST_F(about_dialog_test, shows_logo_and_link_at_every_dpi)
{
    const support::in_modal_loop looking([](HWND dialog) {
        for (const UINT dpi : {96U, 122U, 144U, 192U}) {
            RECT suggested = support::place_of(dialog);
            ::SendMessageW(dialog, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested));
            support::expect_tidy(dialog);
            const std::set<COLORREF> colours = colours_of_logo(::GetDlgItem(dialog, IDC_ABOUT_LOGO));
            for (const COLORREF drawn : {RGB(36, 103, 166), RGB(255, 196, 61), ::GetSysColor(COLOR_BTNFACE)})
                EXPECT_TRUE(std::ranges::any_of(colours, [&](COLORREF each) { return is_near(each, drawn); }))
                    << std::hex << drawn << " at " << std::dec << dpi;
        }
        EXPECT_EQ(girder::ui::window_text(::GetDlgItem(dialog, IDC_ABOUT_LINKS)), u"www.zelmark.example");
        EXPECT_EQ(::GetFocus(), ::GetDlgItem(dialog, IDCANCEL));
        ::PostMessageW(::GetFocus(), WM_KEYDOWN, VK_ESCAPE, 0);
    });
    AboutDialog().show(nullptr);
}

} // namespace
