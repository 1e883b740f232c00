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
#include <array>
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
    void show(std::u16string_view markup, int width = 300, int height = 100) const
    {
        set_window_text(view(), markup);
        ::SendMessageW(view(), WM_SETFONT, reinterpret_cast<WPARAM>(font_.get()), TRUE);
        ::SetWindowPos(view(), nullptr, 0, 0, width, height, SWP_NOZORDER | SWP_NOMOVE);
    }
    void use_dpi(UINT dpi)
    {
        unique_font font = create_dialog_font(dpi);
        ::SendMessageW(view(), WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), TRUE);
        font_ = std::move(font);
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
    unique_font font_ = create_dialog_font(96);
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

std::u16string taken(HRESULT result, BSTR string)
{
    if (result != S_OK)
        return u"(none)";
    std::u16string text(as_utf16(string), ::SysStringLen(string));
    ::SysFreeString(string);
    return text;
}

std::u16string name_of(IAccessible& object, long number)
{
    BSTR name = nullptr;
    const HRESULT result = object.get_accName(child(number), &name);
    return taken(result, name);
}

long role_of(IAccessible& object, long number)
{
    VARIANT role{};
    EXPECT_EQ(object.get_accRole(child(number), &role), S_OK);
    return role.lVal;
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

/// What the view draws on a white sheet larger than itself.
class drawn_view {
public:
    explicit drawn_view(HWND view) : device_(::CreateCompatibleDC(nullptr))
    {
        RECT inside{};
        ::GetClientRect(view, &inside);
        width_ = inside.right;
        height_ = inside.bottom;
        BITMAPINFO description{};
        description.bmiHeader.biSize = sizeof description.bmiHeader;
        description.bmiHeader.biWidth = width_;
        description.bmiHeader.biHeight = -height_;
        description.bmiHeader.biPlanes = 1;
        description.bmiHeader.biBitCount = 32;
        void* bits = nullptr;
        bitmap_.reset(::CreateDIBSection(nullptr, &description, DIB_RGB_COLORS, &bits, nullptr, 0));
        ::SelectObject(device_, bitmap_.get());
        ::SendMessageW(view, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(device_), PRF_CLIENT);
        ::GdiFlush();
        pixels_ = {static_cast<const std::uint32_t*>(bits), static_cast<std::size_t>(width_ * height_)};
    }
    drawn_view(const drawn_view&) = delete;
    drawn_view& operator=(const drawn_view&) = delete;
    ~drawn_view() { ::DeleteDC(device_); }

    bool operator==(const drawn_view& other) const { return std::ranges::equal(pixels_, other.pixels_); }

    /// How many pixels have exactly this colour.
    std::ptrdiff_t count(COLORREF colour) const
    {
        const std::uint32_t wanted = std::uint32_t{GetRValue(colour)} << 16U | std::uint32_t{GetGValue(colour)} << 8U |
                                     std::uint32_t{GetBValue(colour)};
        return std::ranges::count_if(pixels_, [&](std::uint32_t pixel) { return (pixel & 0xFFFFFFU) == wanted; });
    }
    /// The lines that show anything but the background.
    int lines_in_use() const
    {
        int used = 0;
        for (int y = 0; y < height_; ++y) {
            const auto line = pixels_.subspan(static_cast<std::size_t>(y * width_), static_cast<std::size_t>(width_));
            used += std::ranges::any_of(line, [&](std::uint32_t pixel) { return pixel != line.front(); }) ? 1 : 0;
        }
        return used;
    }

private:
    HDC device_;
    unique_handle<handle_traits::gdi<HBITMAP>> bitmap_;
    int width_ = 0;
    int height_ = 0;
    std::span<const std::uint32_t> pixels_;
};

/// Sets system colours for a while.
class system_colours {
public:
    explicit system_colours(std::array<std::pair<int, COLORREF>, 3> colours)
    {
        for (std::size_t i = 0; i < colours.size(); ++i) {
            names_[i] = colours[i].first;
            before_[i] = ::GetSysColor(names_[i]);
            ::SetSysColors(1, &colours[i].first, &colours[i].second);
        }
    }
    system_colours(const system_colours&) = delete;
    system_colours& operator=(const system_colours&) = delete;
    ~system_colours() { ::SetSysColors(static_cast<int>(names_.size()), names_.data(), before_.data()); }

private:
    std::array<int, 3> names_{};
    std::array<COLORREF, 3> before_{};
};

/// The display the tests run on decides which of the two ways of drawing they show.
TEST(rich_view_test, draws_by_direct2d_where_there_is_a_display)
{
    const char* const graphics = std::getenv("TIDELINK_GRAPHICS");
    const bool on_a_display = graphics && std::string_view(graphics) == "x11";
    EXPECT_EQ(drawing::shared() != nullptr, on_a_display);
}

TEST(rich_view_test, replaces_the_label_where_it_was)
{
    const view_dialog dialog;
    wchar_t name[32]{};
    ::GetClassNameW(dialog.view(), name, 32);
    EXPECT_STREQ(name, L"zel.girder.richview");
    EXPECT_EQ(support::children_of(dialog.window()).front(), dialog.view());
    EXPECT_EQ(window_text(dialog.view()), u"Bold and large\nfirst or second") << "the text without the markup";
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

    dialog.use_dpi(192);
    dialog.show(u"one two three four");
    EXPECT_NEAR(rich_view_extent(dialog.view(), 1000).width, 2 * line.width, line.width / 5);
}

TEST(rich_view_test, draws_in_the_system_colours_as_they_are_now)
{
    view_dialog dialog;
    dialog.show(two_links);
    const COLORREF black = RGB(0, 0, 0);
    const COLORREF yellow = RGB(255, 255, 0);
    const COLORREF green = RGB(0, 255, 0);
    // Wide strokes: some of their pixels have the whole colour, whatever the smoothing.
    dialog.use_dpi(192);
    {
        const system_colours high_contrast(
            {{{COLOR_BTNFACE, black}, {COLOR_BTNTEXT, yellow}, {COLOR_HOTLIGHT, green}}});
        const drawn_view drawn(dialog.view());
        EXPECT_GT(drawn.count(black), 1000);
        EXPECT_GT(drawn.count(yellow), 100);
        EXPECT_GT(drawn.count(green), 100);
    }
    const drawn_view normal(dialog.view());
    EXPECT_EQ(normal.count(yellow) + normal.count(green), 0);
    EXPECT_GT(normal.count(::GetSysColor(COLOR_BTNFACE)), 1000);
}

TEST(rich_view_test, characters_that_the_font_lacks_come_from_another_one)
{
    view_dialog dialog;
    dialog.use_dpi(192);
    const auto draws_alike = [&](std::u16string_view one, std::u16string_view other) {
        dialog.show(one);
        const drawn_view first(dialog.view());
        dialog.show(other);
        return first == drawn_view(dialog.view());
    };
    EXPECT_TRUE(draws_alike(u"\u8A2D\u5B9A", u"\u8A2D\u5B9A"));
    EXPECT_FALSE(draws_alike(u"\u8A2D\u5B9A", u"\u8A2D\u65E5"))
        << "the box for what has no glyph looks always the same";
    EXPECT_FALSE(draws_alike(u"a \u8A2D\u5B9A", u"a \u65E5\u5B9A"));
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
    const view_dialog dialog;
    dialog.show(two_links);
    const drawn_view by_first_choice(dialog.view());
    constexpr WPARAM no_device = 0;
    ::SendMessageW(dialog.view(), WM_PRINTCLIENT, no_device, PRF_CLIENT);
    const drawn_view by_second_choice(dialog.view());
    EXPECT_GT(by_second_choice.lines_in_use(), 20);
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
}

TEST(rich_view_test, is_a_tab_stop_only_where_a_key_does_something)
{
    const view_dialog dialog;
    const auto tab_stop = [&] { return (::GetWindowLongPtrW(dialog.view(), GWL_STYLE) & WS_TABSTOP) != 0; };
    dialog.show(u"plain");
    EXPECT_FALSE(tab_stop());
    dialog.show(two_links);
    EXPECT_TRUE(tab_stop());
    dialog.show(u"plain\n\n\n\n\n\n", 300, 40);
    EXPECT_TRUE(tab_stop());
}

TEST(rich_view_test, text_higher_than_the_window_scrolls)
{
    const view_dialog dialog;
    std::u16string lines;
    for (int i = 0; i < 100; ++i)
        lines += u"line\n";
    ::SetFocus(dialog.control(IDC_EDIT));
    dialog.show(lines + u"[[[hhttps://end.example|end]]]", 300, 60);
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
    dialog.show(u"line", 300, 60);
    EXPECT_EQ(::GetWindowLongPtrW(dialog.view(), GWL_STYLE) & WS_VSCROLL, 0);
    EXPECT_EQ(position(), 0);
}

TEST(rich_view_test, assistive_programs_see_text_and_links)
{
    view_dialog dialog;
    dialog.show(two_links);
    const unique_com<IAccessible> object = accessible_of(dialog.view());
    long count = 0;
    EXPECT_EQ(object.get()->get_accChildCount(&count), S_OK);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(name_of(*object.get(), CHILDID_SELF), u"Bold and large\nfirst or second");
    EXPECT_EQ(name_of(*object.get(), 1), u"first");
    EXPECT_EQ(name_of(*object.get(), 2), u"second");
    EXPECT_EQ(name_of(*object.get(), 3), u"(none)");
    EXPECT_EQ(role_of(*object.get(), CHILDID_SELF), ROLE_SYSTEM_STATICTEXT);
    EXPECT_EQ(role_of(*object.get(), 2), ROLE_SYSTEM_LINK);
    BSTR value = nullptr;
    const HRESULT result = object.get()->get_accValue(child(2), &value);
    EXPECT_EQ(taken(result, value), u"mailto:b@example");

    EXPECT_EQ(object.get()->accSelect(SELFLAG_TAKEFOCUS, child(2)), S_OK);
    VARIANT focused{};
    EXPECT_EQ(object.get()->get_accFocus(&focused), S_OK);
    EXPECT_EQ(focused.lVal, 2);
    VARIANT state{};
    EXPECT_EQ(object.get()->get_accState(child(2), &state), S_OK);
    EXPECT_EQ(state.lVal, STATE_SYSTEM_LINKED | STATE_SYSTEM_FOCUSABLE | STATE_SYSTEM_FOCUSED);
    EXPECT_EQ(object.get()->accDoDefaultAction(child(1)), S_OK);
    EXPECT_THAT(dialog.opened, ElementsAre(u"https://a.example"));

    const RECT place = place_of_link(dialog.view(), 2);
    EXPECT_TRUE(support::is_inside(place, support::place_of(dialog.view())));
    VARIANT hit{};
    EXPECT_EQ(object.get()->accHitTest((place.left + place.right) / 2, (place.top + place.bottom) / 2, &hit), S_OK);
    EXPECT_EQ(hit.lVal, 2);
    VARIANT next{};
    EXPECT_EQ(object.get()->accNavigate(NAVDIR_NEXT, child(1), &next), S_OK);
    EXPECT_EQ(next.lVal, 2);
    EXPECT_EQ(object.get()->accNavigate(NAVDIR_NEXT, child(2), &next), S_FALSE);
}

TEST(rich_view_test, accessible_object_may_outlive_the_window)
{
    std::optional<view_dialog> dialog(std::in_place);
    const unique_com<IAccessible> object = accessible_of(dialog->view());
    dialog.reset();
    BSTR name = nullptr;
    EXPECT_EQ(object.get()->get_accName(child(CHILDID_SELF), &name), CO_E_OBJNOTCONNECTED);
}

} // namespace
} // namespace girder::ui
