#include "app/about_dialog.h"
#include "app/com_apartment.h"
#include "localisation/string_tables.h"
#include "resource.h"
#include "ui/controls.h"
#include "ui/looks.h"
#include "ui/modal_loop.h"
#include "ui/rich_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace {

using namespace tidelink;
using girder::ui::parse_markup;
using girder::ui::window_text;

class about_dialog_test : public testing::Test {
protected:
    about_dialog_test() { tidelink::initialise({}, u"en"); }

    com_apartment com_;
};

TEST_F(about_dialog_test, text_shows_name_version_and_notice)
{
    const girder::ui::rich_text about =
        parse_markup(about_text({.major = 7, .minor = 1, .build = 0, .revision = 1604}));
    EXPECT_EQ(about.text, u"Zelmark Tidelink Port Server\nVersion 7.01.00.1604\n\nCopyright © Zelmark\n"
                          u"All rights reserved.\nhttps://www.zelmark.example");
    EXPECT_TRUE(about.runs.front().style.bold);
    EXPECT_EQ(about.runs.front().style.percent, 120);
    ASSERT_EQ(about.addresses.size(), 1U);
    EXPECT_EQ(about.addresses.front(), u"https://www.zelmark.example");
    EXPECT_NE(about_text({.major = 12, .minor = 345, .build = 6, .revision = 65535}).find(u"Version 12.345.06.65535\n"),
              std::u16string::npos)
        << "widths are the least ones";
}

/// The colours of the pixels that the box shows over the logo.
std::set<COLORREF> colours_of_logo(HWND logo)
{
    std::set<COLORREF> colours;
    const HDC device = ::CreateCompatibleDC(nullptr);
    const SIZE size = support::size_of(logo);
    const HDC screen = ::GetDC(nullptr);
    const HBITMAP bitmap = ::CreateCompatibleBitmap(screen, size.cx, size.cy);
    ::ReleaseDC(nullptr, screen);
    const HGDIOBJ before = ::SelectObject(device, bitmap);
    DRAWITEMSTRUCT item{};
    item.CtlType = ODT_STATIC;
    item.CtlID = IDC_ABOUT_LOGO;
    item.itemAction = ODA_DRAWENTIRE;
    item.hwndItem = logo;
    item.hDC = device;
    item.rcItem = {.left = 0, .top = 0, .right = size.cx, .bottom = size.cy};
    ::SendMessageW(::GetParent(logo), WM_DRAWITEM, IDC_ABOUT_LOGO, reinterpret_cast<LPARAM>(&item));
    for (int y = 0; y < size.cy; ++y)
        for (int x = 0; x < size.cx; ++x)
            colours.insert(::GetPixel(device, x, y));
    ::SelectObject(device, before);
    ::DeleteObject(bitmap);
    ::DeleteDC(device);
    return colours;
}

bool is_near(COLORREF a, COLORREF b)
{
    constexpr int tolerance = 12;
    return std::abs(GetRValue(a) - GetRValue(b)) <= tolerance && std::abs(GetGValue(a) - GetGValue(b)) <= tolerance &&
           std::abs(GetBValue(a) - GetBValue(b)) <= tolerance;
}

TEST_F(about_dialog_test, shows_logo_text_and_link_at_every_dpi)
{
    const support::in_modal_loop looking([](HWND dialog) {
        EXPECT_EQ(window_text(dialog), u"About Tidelink Port Server");
        for (const UINT dpi : {96U, 122U, 144U, 192U}) {
            RECT suggested = support::place_of(dialog);
            ::SendMessageW(dialog, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested));
            support::expect_tidy(dialog);
            const std::set<COLORREF> colours = colours_of_logo(::GetDlgItem(dialog, IDC_ABOUT_LOGO));
            for (const COLORREF drawn : {RGB(36, 103, 166), RGB(255, 196, 61), ::GetSysColor(COLOR_BTNFACE)})
                EXPECT_TRUE(std::ranges::any_of(colours, [&](COLORREF each) { return is_near(each, drawn); }))
                    << std::hex << drawn << " at " << std::dec << dpi;
        }
        for (const int id : {IDC_ABOUT_TEXT, IDC_ABOUT_LINKS}) {
            wchar_t kind[32]{};
            ::GetClassNameW(::GetDlgItem(dialog, id), kind, 32);
            EXPECT_STREQ(kind, L"zel.girder.richview");
        }
        EXPECT_NE(window_text(::GetDlgItem(dialog, IDC_ABOUT_TEXT)).find(u"Version 7.01.00.1604\n"),
                  std::u16string::npos);
        EXPECT_EQ(window_text(::GetDlgItem(dialog, IDC_ABOUT_LINKS)), u"www.zelmark.example");
        EXPECT_EQ(::GetFocus(), ::GetDlgItem(dialog, IDCANCEL));
        ::PostMessageW(::GetFocus(), WM_KEYDOWN, VK_ESCAPE, 0);
    });
    AboutDialog().show(nullptr);
}

} // namespace
