#include "base/handles.h"
#include "base/system_error.h"
#include "base/unique_com.h"
#include "base/wide.h"
#include "looks.h"
#include "test_dialogs.h"
#include "ui/controls.h"
#include "ui/dialog.h"
#include "ui/dpi.h"
#include "ui/drawing.h"
#include "ui/rich_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <oleacc.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <span>

namespace girder::ui {
namespace {

using testing::ElementsAre;

constexpr char16_t two_links[] = u"[[[bBold]]] and [[[s:200:large]]]\n[[[hhttps://a.example|first]]] or "
                                 u"[[[hmailto:b@example|second]]]";

/// A dialog with a view in the place of a label, which hears of clicks and keeps them from the shell.
class view_dialog : public dialog {
public:
    view_dialog()
    {
        create_modeless(IDD_PROBE, nullptr, "create");
        ::ShowWindow(window(), SW_SHOW);
    }

    HWND view() const noexcept { return control(IDC_LABEL); }
    void show(std::u16string_view markup, int height = 100, UINT dpi = 96)
    {
        set_window_text(view(), markup);
        unique_font font = create_dialog_font(dpi);
        ::SendMessageW(view(), WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), TRUE);
        font_ = std::move(font);
        ::SetWindowPos(view(), nullptr, 0, 0, 300, height, SWP_NOZORDER | SWP_NOMOVE);
    }

    std::vector<std::u16string> opened;

protected:
    bool on_initialise() override
    {
        set_window_text(control(IDC_LABEL), two_links);
        replace_by_rich_view(window(), IDC_LABEL);
        return true;
    }
    bool on_notify(const NMHDR& notification, LRESULT& result) override
    {
        if (notification.idFrom != IDC_LABEL || notification.code != static_cast<UINT>(NM_CLICK))
            return false;
        opened.emplace_back(reinterpret_cast<const rich_view_click&>(notification).address);
        result = 1;
        return true;
    }
    void on_error(std::exception_ptr) noexcept override { FAIL(); }

private:
    unique_font font_;
};

VARIANT child(long number)
{
    VARIANT made{};
    made.vt = VT_I4;
    made.lVal = number;
    return made;
}

/// The view as an assistive program gets it.
unique_com<IAccessible> accessible_of(HWND window)
{
    unique_com<IAccessible> object;
    EXPECT_EQ(::AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                           reinterpret_cast<void**>(object.put())),
              S_OK);
    return object;
}

/// What an assistive program is told when it asks for a text.
std::u16string told(HRESULT (STDMETHODCALLTYPE IAccessible::*ask)(VARIANT, BSTR*), IAccessible& object, long number)
{
    BSTR answer = nullptr;
    if ((object.*ask)(child(number), &answer) != S_OK)
        return u"(none)";
    std::u16string text(as_utf16(answer), ::SysStringLen(answer));
    ::SysFreeString(answer);
    return text;
}

RECT place_of_link(HWND view, long number)
{
    long left = 0;
    long top = 0;
    long width = 0;
    long height = 0;
    EXPECT_EQ(accessible_of(view).get()->accLocation(&left, &top, &width, &height, child(number)), S_OK);
    return {.left = left, .top = top, .right = left + width, .bottom = top + height};
}

LPARAM middle_of_link(HWND view, long number)
{
    const RECT place = place_of_link(view, number);
    POINT middle{.x = (place.left + place.right) / 2, .y = (place.top + place.bottom) / 2};
    ::ScreenToClient(view, &middle);
    return MAKELPARAM(middle.x, middle.y);
}

void click(HWND view, LPARAM down, LPARAM up)
{
    ::SendMessageW(view, WM_LBUTTONDOWN, MK_LBUTTON, down);
    ::SendMessageW(view, WM_LBUTTONUP, 0, up);
}

/// Sends a key the way the dialog's loop does: to the dialog when the control does not want it.
void press(const dialog& to, WPARAM key)
{
    MSG message{.hwnd = ::GetFocus(), .message = WM_KEYDOWN, .wParam = key, .lParam = 0, .time = 0, .pt = {}};
    if (!::IsDialogMessageW(to.window(), &message))
        ::DispatchMessageW(&message);
}

/// The pixels that the view draws.
std::vector<COLORREF> drawn(HWND view)
{
    const SIZE size = support::size_of(view);
    BITMAPINFO description{};
    description.bmiHeader.biSize = sizeof description.bmiHeader;
    description.bmiHeader.biWidth = size.cx;
    description.bmiHeader.biHeight = size.cy;
    description.bmiHeader.biPlanes = 1;
    description.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const HDC device = ::CreateCompatibleDC(nullptr);
    const unique_handle<handle_traits::gdi<HBITMAP>> sheet(
        ::CreateDIBSection(nullptr, &description, DIB_RGB_COLORS, &bits, nullptr, 0));
    const HGDIOBJ before = ::SelectObject(device, sheet.get());
    ::SendMessageW(view, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(device), PRF_CLIENT);
    ::GdiFlush();
    std::vector<COLORREF> pixels;
    for (const RGBQUAD& pixel :
         std::span(static_cast<const RGBQUAD*>(bits), static_cast<std::size_t>(size.cx * size.cy)))
        pixels.push_back(RGB(pixel.rgbRed, pixel.rgbGreen, pixel.rgbBlue));
    ::SelectObject(device, before);
    ::DeleteDC(device);
    return pixels;
}

/// The display the tests run on decides which of the two ways of drawing they show.
TEST(rich_view_test, draws_by_direct2d_where_there_is_a_display)
{
    const char* const graphics = std::getenv("TIDELINK_GRAPHICS");
    const bool on_a_display = graphics && std::string_view(graphics) == "x11";
    EXPECT_EQ(drawing::shared() != nullptr, on_a_display);
}

TEST(rich_view_test, needs_the_room_of_its_text)
{
    view_dialog dialog;
    dialog.show(u"one two three four");
    const extent line = rich_view_extent(dialog.view(), 1000);
    const extent half = rich_view_extent(dialog.view(), line.width * 2 / 3);
    EXPECT_LE(half.width, line.width * 2 / 3);
    EXPECT_EQ(half.height, 2 * line.height);
    EXPECT_LE(rich_view_extent(dialog.view(), 20).width, 20) << "a word is broken where it has to be";

    dialog.show(u"[[[bone two three four]]]");
    EXPECT_GT(rich_view_extent(dialog.view(), 1000).width, line.width);
    dialog.show(u"[[[s:200:one two three four]]]");
    EXPECT_NEAR(rich_view_extent(dialog.view(), 1000).height, 2 * line.height, line.height / 2);

    dialog.show(u"one two three four", 100, 192);
    EXPECT_NEAR(rich_view_extent(dialog.view(), 1000).width, 2 * line.width, line.width / 5);
}

TEST(rich_view_test, draws_in_the_system_colours_as_they_are_now)
{
    constexpr int kinds[] = {COLOR_BTNFACE, COLOR_BTNTEXT, COLOR_HOTLIGHT};
    constexpr COLORREF high_contrast[] = {RGB(0, 0, 0), RGB(255, 255, 0), RGB(0, 255, 0)};
    COLORREF normal[3];
    std::ranges::transform(kinds, normal, ::GetSysColor);
    view_dialog dialog;
    // Wide strokes: some of their pixels have the whole colour, whatever the smoothing.
    dialog.show(two_links, 100, 192);
    ::SetSysColors(3, kinds, high_contrast);
    const std::vector<COLORREF> in_contrast = drawn(dialog.view());
    ::SetSysColors(3, kinds, normal);
    const std::vector<COLORREF> as_before = drawn(dialog.view());
    EXPECT_GT(std::ranges::count(in_contrast, high_contrast[0]), 1000);
    EXPECT_GT(std::ranges::count(in_contrast, high_contrast[1]), 100);
    EXPECT_GT(std::ranges::count(in_contrast, high_contrast[2]), 100);
    EXPECT_GT(std::ranges::count(as_before, normal[0]), 1000);
    EXPECT_EQ(std::ranges::count(as_before, high_contrast[1]) + std::ranges::count(as_before, high_contrast[2]), 0);
}

TEST(rich_view_test, characters_that_the_font_lacks_come_from_another_one)
{
    view_dialog dialog;
    const auto drawn_text = [&](std::u16string_view text) {
        dialog.show(text, 100, 192);
        return drawn(dialog.view());
    };
    EXPECT_EQ(drawn_text(u"a \u8A2D\u5B9A"), drawn_text(u"a \u8A2D\u5B9A"));
    EXPECT_NE(drawn_text(u"a \u8A2D\u5B9A"), drawn_text(u"a \u8A2D\u65E5"))
        << "the box for what has no glyph looks always the same";
}

TEST(drawing_test, a_lost_device_is_replaced_and_drawn_on_again)
{
    drawing* const means = drawing::shared();
    if (!means)
        GTEST_SKIP() << "nothing to lose without Direct2D";
    const unique_handle<handle_traits::gdi<HBITMAP>> sheet(::CreateBitmap(20, 20, 1, 32, nullptr));
    const HDC device = ::CreateCompatibleDC(nullptr);
    const HGDIOBJ before = ::SelectObject(device, sheet.get());
    constexpr RECT all{.left = 0, .top = 0, .right = 20, .bottom = 20};
    constexpr COLORREF drawn = RGB(200, 100, 50);
    for (const auto& [losses, succeeds] : {std::pair(0, true), {1, true}, {2, false}, {0, true}}) {
        std::vector<unique_com<ID2D1RenderTarget>> targets;
        ::SetPixel(device, 5, 5, 0);
        EXPECT_EQ(means->paint(device, all,
                               [&](ID2D1RenderTarget& target) {
                                   target.AddRef();
                                   targets.emplace_back(&target);
                                   if (std::cmp_less_equal(targets.size(), losses))
                                       throw system_error(static_cast<DWORD>(D2DERR_RECREATE_TARGET), "CreateBitmap");
                                   target.Clear(as_direct2d(drawn));
                               }),
                  succeeds);
        EXPECT_EQ(::GetPixel(device, 5, 5), succeeds ? drawn : 0);
        EXPECT_EQ(targets.size(), losses == 0 ? 1U : 2U);
        EXPECT_NE(targets.front().get(), losses == 0 ? nullptr : targets.back().get());
    }
    ::SelectObject(device, before);
    ::DeleteDC(device);
}

TEST(rich_view_test, is_drawn_by_gdi_once_direct2d_has_refused)
{
    view_dialog dialog;
    dialog.show(two_links, 100, 192);
    const std::vector<COLORREF> by_first_choice = drawn(dialog.view());
    constexpr WPARAM no_device = 0;
    ::SendMessageW(dialog.view(), WM_PRINTCLIENT, no_device, PRF_CLIENT);
    const std::vector<COLORREF> by_second_choice = drawn(dialog.view());
    EXPECT_GT(std::ranges::count(by_second_choice, ::GetSysColor(COLOR_BTNTEXT)), 100);
    EXPECT_EQ(by_first_choice == by_second_choice, drawing::shared() == nullptr);
}

TEST(rich_view_test, a_click_opens_the_link_it_begins_and_ends_on)
{
    view_dialog dialog;
    dialog.show(two_links);
    const HWND view = dialog.view();
    const LPARAM first = middle_of_link(view, 1);
    const LPARAM second = middle_of_link(view, 2);
    click(view, first, first);
    click(view, first, second);
    click(view, MAKELPARAM(1, 1), first);
    click(view, MAKELPARAM(1, 1), MAKELPARAM(1, 1));
    click(view, second, second);
    EXPECT_THAT(dialog.opened, ElementsAre(u"https://a.example", u"mailto:b@example"));
    EXPECT_EQ(::GetFocus(), view);
}

TEST(rich_view_test, tab_goes_through_the_links_and_enter_opens)
{
    view_dialog dialog;
    dialog.show(two_links);
    ::SetFocus(dialog.view());
    press(dialog, VK_RETURN);
    press(dialog, VK_TAB);
    EXPECT_EQ(::GetFocus(), dialog.view());
    press(dialog, VK_RETURN);
    EXPECT_THAT(dialog.opened, ElementsAre(u"https://a.example", u"mailto:b@example"));
    press(dialog, VK_TAB);
    EXPECT_EQ(::GetFocus(), dialog.control(IDC_EDIT));

    const auto is_tab_stop = [&] { return (::GetWindowLongPtrW(dialog.view(), GWL_STYLE) & WS_TABSTOP) != 0; };
    EXPECT_TRUE(is_tab_stop());
    dialog.show(u"plain");
    EXPECT_FALSE(is_tab_stop()) << "no key does anything there";
    dialog.show(u"plain\n\n\n\n\n\n", 40);
    EXPECT_TRUE(is_tab_stop()) << "the keys scroll";
}

TEST(rich_view_test, text_higher_than_the_window_scrolls)
{
    view_dialog dialog;
    std::u16string lines;
    for (int i = 0; i < 100; ++i)
        lines += u"line\n";
    ::SetFocus(dialog.control(IDC_EDIT));
    dialog.show(lines + u"[[[hhttps://end.example|end]]]", 60);
    const auto position = [&] { return ::GetScrollPos(dialog.view(), SB_VERT); };
    ::SetFocus(dialog.view());
    const int at_end = position();
    EXPECT_GT(at_end, 500) << "the focused link comes into sight";
    press(dialog, VK_HOME);
    EXPECT_EQ(position(), 0);
    press(dialog, VK_NEXT);
    EXPECT_EQ(position(), 60);
    press(dialog, VK_UP);
    EXPECT_LT(position(), 60);
    ::SendMessageW(dialog.view(), WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(-120)), 0);
    EXPECT_GT(position(), 60);
    ::SendMessageW(dialog.view(), WM_VSCROLL, SB_BOTTOM, 0);
    EXPECT_EQ(position(), at_end);
    dialog.show(u"line", 60);
    EXPECT_EQ(::GetWindowLongPtrW(dialog.view(), GWL_STYLE) & WS_VSCROLL, 0);
    EXPECT_EQ(position(), 0);
}

TEST(rich_view_test, assistive_programs_see_text_and_links)
{
    std::optional<view_dialog> dialog(std::in_place);
    dialog->show(two_links);
    const HWND view = dialog->view();
    const unique_com<IAccessible> owner = accessible_of(view);
    IAccessible& object = *owner.get();
    wchar_t kind[32]{};
    ::GetClassNameW(view, kind, 32);
    EXPECT_STREQ(kind, L"zel.girder.richview");
    EXPECT_EQ(window_text(view), u"Bold and large\nfirst or second") << "the text without the markup";
    long count = 0;
    EXPECT_EQ(object.get_accChildCount(&count), S_OK);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(told(&IAccessible::get_accName, object, CHILDID_SELF), u"Bold and large\nfirst or second");
    EXPECT_EQ(told(&IAccessible::get_accName, object, 1), u"first");
    EXPECT_EQ(told(&IAccessible::get_accName, object, 3), u"(none)");
    EXPECT_EQ(told(&IAccessible::get_accValue, object, 2), u"mailto:b@example");
    VARIANT answer{};
    EXPECT_EQ(object.get_accRole(child(CHILDID_SELF), &answer), S_OK);
    EXPECT_EQ(answer.lVal, ROLE_SYSTEM_STATICTEXT);
    EXPECT_EQ(object.get_accRole(child(2), &answer), S_OK);
    EXPECT_EQ(answer.lVal, ROLE_SYSTEM_LINK);

    EXPECT_EQ(object.accSelect(SELFLAG_TAKEFOCUS, child(2)), S_OK);
    EXPECT_EQ(object.get_accFocus(&answer), S_OK);
    EXPECT_EQ(answer.lVal, 2);
    EXPECT_EQ(object.get_accState(child(2), &answer), S_OK);
    EXPECT_EQ(answer.lVal, STATE_SYSTEM_LINKED | STATE_SYSTEM_FOCUSABLE | STATE_SYSTEM_FOCUSED);
    EXPECT_EQ(object.accDoDefaultAction(child(1)), S_OK);
    EXPECT_THAT(dialog->opened, ElementsAre(u"https://a.example"));

    const RECT place = place_of_link(view, 2);
    EXPECT_TRUE(support::is_inside(place, support::place_of(view)));
    EXPECT_EQ(object.accHitTest((place.left + place.right) / 2, (place.top + place.bottom) / 2, &answer), S_OK);
    EXPECT_EQ(answer.lVal, 2);
    EXPECT_EQ(object.accNavigate(NAVDIR_NEXT, child(1), &answer), S_OK);
    EXPECT_EQ(answer.lVal, 2);
    EXPECT_EQ(object.accNavigate(NAVDIR_NEXT, child(2), &answer), S_FALSE);

    dialog.reset();
    BSTR name = nullptr;
    EXPECT_EQ(object.get_accName(child(CHILDID_SELF), &name), CO_E_OBJNOTCONNECTED) << "it may outlive the window";
}

} // namespace
} // namespace girder::ui
