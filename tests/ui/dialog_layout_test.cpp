#include "looks.h"
#include "test_dialogs.h"
#include "ui/controls.h"
#include "ui/dialog.h"
#include "ui/dialog_layout.h"

#include <gtest/gtest.h>

namespace girder::ui {
namespace {

using support::place_of;
using support::size_of;

/// A dialog with one control of each kind, arranged like the program's own.
class sample_dialog : public dialog {
public:
    sample_dialog() { create_modeless(IDD_PROBE, nullptr, "create"); }

    using dialog::dpi;
    using dialog::lay_out;

protected:
    bool on_initialise() override
    {
        check_list::set_up(control(IDC_LIST));
        for (std::uint32_t port = 1; port <= 20; ++port)
            check_list::append(control(IDC_LIST), u"Communications Port", port, true);
        return true;
    }
    box layout(const control_measure& measure) const override
    {
        const int gap = measure.units().horizontal(4);
        const int margin = measure.units().horizontal(7);
        const box inside = column({measure.mark_button(IDC_RADIO), measure.mark_button(IDC_CHECK),
                                   growing_both(measure.list(IDC_LIST, 8, 40)), measure.drop_down_list(IDC_COMBO)},
                                  gap);
        const box closing = with_equal_widths(row({measure.push_button(IDOK), measure.push_button(IDCANCEL)}, gap));
        return padded(column({row({measure.label(IDC_LABEL), growing_wide(measure.edit(IDC_EDIT, 20))}, gap),
                              growing_both(measure.group(IDC_GROUP, inside)),
                              row({measure.push_button(IDC_PUSH), filler(gap), closing}, gap)},
                             gap),
                      {margin, margin, margin, margin});
    }
    void on_laid_out() override { check_list::fit_column(control(IDC_LIST)); }
    void on_error(std::exception_ptr) noexcept override { FAIL(); }
};

LOGFONTW font_of(HWND control)
{
    LOGFONTW description{};
    ::GetObjectW(reinterpret_cast<HFONT>(::SendMessageW(control, WM_GETFONT, 0, 0)), sizeof description, &description);
    return description;
}

/// What the system sends when the window comes to a screen of another DPI.
void change_dpi(const sample_dialog& dialog, UINT dpi, RECT suggested)
{
    ::SendMessageW(dialog.window(), WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested));
}

RECT scaled(const RECT& place, int from, int to)
{
    return {.left = 40,
            .top = 30,
            .right = 40 + ::MulDiv(place.right - place.left, to, from),
            .bottom = 30 + ::MulDiv(place.bottom - place.top, to, from)};
}

TEST(dpi_change_test, takes_the_suggested_corner_and_comes_back_to_the_old_size)
{
    sample_dialog dialog;
    change_dpi(dialog, 144, {.left = 0, .top = 0, .right = 10, .bottom = 10});
    EXPECT_EQ(dialog.dpi(), 0U) << "nothing to lay out yet";

    dialog.lay_out(96);
    const RECT first = place_of(dialog.window());
    const SIZE first_size = size_of(dialog.window());
    change_dpi(dialog, 96, {.left = 0, .top = 0, .right = 2000, .bottom = 2000});
    const RECT unmoved = place_of(dialog.window());
    EXPECT_TRUE(::EqualRect(&first, &unmoved)) << "the DPI that it has";
    for (const int dpi : {122, 144, 192}) {
        SCOPED_TRACE(dpi);
        change_dpi(dialog, static_cast<UINT>(dpi), scaled(first, 96, dpi));
        const RECT there = place_of(dialog.window());
        EXPECT_EQ(there.left, 40);
        EXPECT_EQ(there.top, 30);
        EXPECT_EQ(font_of(dialog.control(IDOK)).lfHeight, -::MulDiv(8, dpi, 72));
        EXPECT_GE(there.right, scaled(first, 96, dpi).right);
        support::expect_tidy(dialog.window(), IDC_GROUP);
        const HWND list = dialog.control(IDC_LIST);
        RECT inside{};
        ::GetClientRect(list, &inside);
        EXPECT_EQ(::SendMessageW(list, LVM_GETCOLUMNWIDTH, 0, 0), inside.right);
        EXPECT_EQ(::GetWindowLongPtrW(list, GWL_STYLE) & WS_HSCROLL, 0);

        change_dpi(dialog, 96, scaled(there, dpi, 96));
        EXPECT_NEAR(size_of(dialog.window()).cx, first_size.cx, first_size.cx / 20);
        EXPECT_NEAR(size_of(dialog.window()).cy, first_size.cy, first_size.cy / 20);
    }
}

TEST(lay_out_test, what_the_screen_has_no_room_for_is_scrolled_to)
{
    constexpr DWORD both_bars = WS_HSCROLL | WS_VSCROLL;
    sample_dialog dialog;
    ::ShowWindow(dialog.window(), SW_SHOW);
    const auto bars = [&] { return static_cast<DWORD>(::GetWindowLongPtrW(dialog.window(), GWL_STYLE)) & both_bars; };
    const auto is_in_sight = [&](int id) {
        RECT inside{};
        ::GetClientRect(dialog.window(), &inside);
        ::MapWindowPoints(dialog.window(), nullptr, reinterpret_cast<POINT*>(&inside), 2);
        return support::is_inside(place_of(dialog.control(id)), inside);
    };
    const auto send = [&](UINT message, WORD request) { ::SendMessageW(dialog.window(), message, request, 0); };
    dialog.lay_out(700);
    EXPECT_EQ(bars(), both_bars);
    EXPECT_TRUE(support::is_inside(place_of(dialog.window()), support::work_area()));
    ::SetFocus(dialog.control(IDC_PUSH));
    EXPECT_TRUE(is_in_sight(IDC_PUSH)) << "down";
    ::SetFocus(dialog.control(IDCANCEL));
    EXPECT_TRUE(is_in_sight(IDCANCEL)) << "across";
    EXPECT_FALSE(is_in_sight(IDC_PUSH));
    send(WM_HSCROLL, SB_TOP);
    EXPECT_TRUE(is_in_sight(IDC_PUSH));
    send(WM_VSCROLL, SB_TOP);
    EXPECT_TRUE(is_in_sight(IDC_LABEL));
    ::SendMessageW(dialog.window(), WM_MOUSEWHEEL, MAKEWPARAM(0, -120), 0);
    EXPECT_FALSE(is_in_sight(IDC_LABEL));
    dialog.lay_out(750);
    EXPECT_TRUE(is_in_sight(IDCANCEL)) << "what has the focus stays in sight";
    dialog.lay_out(96);
    EXPECT_EQ(bars(), 0U);
    support::expect_tidy(dialog.window(), IDC_GROUP);
}

} // namespace
} // namespace girder::ui
