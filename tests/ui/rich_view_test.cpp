#include "base/system_error.h"
#include "base/unique_com.h"
#include "base/wide.h"
#include "looks.h"
#include "sheet.h"
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
    const support::sheet sheet(support::size_of(view));
    ::SendMessageW(view, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(sheet.device()), PRF_CLIENT);
    return sheet.pixels();
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
    EXPECT_EQ(std::ranges::count(drawn(dialog.view()), high_contrast[1]), 0);
    ::SetSysColors(3, kinds, high_contrast);
    const std::vector<COLORREF> in_contrast = drawn(dialog.view());
    ::SetSysColors(3, kinds, normal);
    EXPECT_GT(std::ranges::count(in_contrast, high_contrast[0]), 1000);
    EXPECT_GT(std::ranges::count(in_contrast, high_contrast[1]), 100);
    EXPECT_GT(std::ranges::count(in_contrast, high_contrast[2]), 100);
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
    const support::sheet sheet({.cx = 20, .cy = 20});
    std::vector<unique_com<ID2D1RenderTarget>> targets;
    const auto draw = [&](ID2D1RenderTarget& target) {
        target.AddRef();
        targets.emplace_back(&target);
        if (targets.size() == 1)
            throw system_error(static_cast<DWORD>(D2DERR_RECREATE_TARGET), "CreateBitmap");
        target.Clear(as_direct2d(RGB(200, 100, 50)));
    };
    EXPECT_TRUE(means->paint(sheet.device(), {.left = 0, .top = 0, .right = 20, .bottom = 20}, draw));
    EXPECT_EQ(std::ranges::count(sheet.pixels(), RGB(200, 100, 50)), 400);
    EXPECT_NE(targets.front().get(), targets.back().get());
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

    dialog.show(u"plain");
    EXPECT_EQ(::GetWindowLongPtrW(dialog.view(), GWL_STYLE) & WS_TABSTOP, 0) << "no key does anything there";
}

TEST(rich_view_test, text_higher_than_the_window_scrolls)
{
    view_dialog dialog;
    const auto position = [&] { return ::GetScrollPos(dialog.view(), SB_VERT); };
    ::SetFocus(dialog.control(IDC_EDIT));
    dialog.show(std::u16string(100, u'\n') + u"[[[hhttps://end.example|end]]]", 60);
    ::SetFocus(dialog.view());
    EXPECT_GT(position(), 500) << "the focused link comes into sight";
    press(dialog, VK_HOME);
    EXPECT_EQ(position(), 0);
    press(dialog, VK_NEXT);
    EXPECT_EQ(position(), 60);
    ::SendMessageW(dialog.view(), WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(-120)), 0);
    EXPECT_GT(position(), 60);
    dialog.show(u"line", 60);
    EXPECT_EQ(position(), 0);
}

TEST(rich_view_test, assistive_programs_see_text_and_links)
{
    constexpr char16_t text_alone[] = u"Bold and large\nfirst or second";
    std::optional<view_dialog> dialog(std::in_place);
    dialog->show(two_links);
    unique_com<IAccessible> owner;
    ASSERT_EQ(::AccessibleObjectFromWindow(dialog->view(), static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                           reinterpret_cast<void**>(owner.put())),
              S_OK);
    IAccessible& object = *owner.get();
    VARIANT child{};
    child.vt = VT_I4;
    const auto told = [&](HRESULT (STDMETHODCALLTYPE IAccessible::*ask)(VARIANT, BSTR*), long number) {
        BSTR answer = nullptr;
        child.lVal = number;
        EXPECT_EQ((object.*ask)(child, &answer), S_OK);
        const std::u16string text(as_utf16(answer), ::SysStringLen(answer));
        ::SysFreeString(answer);
        return text;
    };
    EXPECT_EQ(::FindWindowExW(dialog->window(), nullptr, L"zel.girder.richview", nullptr), dialog->view());
    EXPECT_EQ(window_text(dialog->view()), text_alone);
    EXPECT_EQ(told(&IAccessible::get_accName, CHILDID_SELF), text_alone);
    EXPECT_EQ(told(&IAccessible::get_accName, 1), u"first");
    EXPECT_EQ(told(&IAccessible::get_accValue, 2), u"mailto:b@example");
    VARIANT answer{};
    EXPECT_EQ(object.get_accRole(child, &answer), S_OK);
    EXPECT_EQ(answer.lVal, ROLE_SYSTEM_LINK);
    EXPECT_EQ(object.accSelect(SELFLAG_TAKEFOCUS, child), S_OK);
    EXPECT_EQ(object.get_accState(child, &answer), S_OK);
    EXPECT_EQ(answer.lVal, STATE_SYSTEM_LINKED | STATE_SYSTEM_FOCUSABLE | STATE_SYSTEM_FOCUSED);
    EXPECT_EQ(object.accDoDefaultAction(child), S_OK);
    EXPECT_THAT(dialog->opened, ElementsAre(u"mailto:b@example"));

    dialog.reset();
    BSTR name = nullptr;
    EXPECT_EQ(object.get_accName(child, &name), CO_E_OBJNOTCONNECTED) << "it may outlive the window";
}

} // namespace
} // namespace girder::ui
