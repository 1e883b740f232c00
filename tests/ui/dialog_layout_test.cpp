#include "looks.h"
#include "test_dialogs.h"
#include "ui/dialog.h"

#include <gtest/gtest.h>

namespace girder::ui {
namespace {

using support::place_of;
using support::size_of;

/// A dialog with a list that takes the room that is left over.
class sample_dialog : public dialog {
public:
    sample_dialog() { create_modeless(IDD_PROBE, nullptr, "create"); }

    using dialog::lay_out;

protected:
    box layout(const control_measure& measure) const override
    {
        return column({row({measure.label(IDC_LABEL), growing_wide(measure.edit(IDC_EDIT, 20))}, 0),
                       growing_both(measure.list(IDC_LIST, 8, 40)),
                       row({measure.push_button(IDOK), filler(), measure.push_button(IDCANCEL)}, 0)},
                      0);
    }
    void on_error(std::exception_ptr) noexcept override { FAIL(); }
};

TEST(dpi_change_test, takes_the_suggested_corner_and_comes_back_to_the_old_size)
{
    sample_dialog dialog;
    dialog.lay_out(96);
    const SIZE first = size_of(dialog.window());
    const auto change_dpi = [&](int from, int to) {
        SCOPED_TRACE(to);
        const SIZE size = size_of(dialog.window());
        RECT suggested{.left = 40, .top = 30, .right = 40, .bottom = 30};
        suggested.right += ::MulDiv(size.cx, to, from);
        suggested.bottom += ::MulDiv(size.cy, to, from);
        ::SendMessageW(dialog.window(), WM_DPICHANGED, MAKEWPARAM(to, to), reinterpret_cast<LPARAM>(&suggested));
        const RECT there = place_of(dialog.window());
        EXPECT_EQ(there.left, 40);
        EXPECT_EQ(there.top, 30);
        EXPECT_GE(there.right, suggested.right);
        LOGFONTW font{};
        ::GetObjectW(reinterpret_cast<HFONT>(::SendMessageW(dialog.control(IDOK), WM_GETFONT, 0, 0)), sizeof font,
                     &font);
        EXPECT_EQ(font.lfHeight, -::MulDiv(8, to, 72));
        support::expect_tidy(dialog.window());
    };
    for (const int dpi : {122, 144, 192}) {
        change_dpi(96, dpi);
        change_dpi(dpi, 96);
        EXPECT_NEAR(size_of(dialog.window()).cx, first.cx, first.cx / 20);
        EXPECT_NEAR(size_of(dialog.window()).cy, first.cy, first.cy / 20);
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
    dialog.lay_out(1000);
    EXPECT_EQ(bars(), both_bars);
    EXPECT_TRUE(support::is_inside(place_of(dialog.window()), support::work_area()));
    ::SetFocus(dialog.control(IDOK));
    EXPECT_TRUE(is_in_sight(IDOK)) << "down";
    ::SetFocus(dialog.control(IDCANCEL));
    EXPECT_TRUE(is_in_sight(IDCANCEL)) << "across";
    EXPECT_FALSE(is_in_sight(IDOK));
    ::SendMessageW(dialog.window(), WM_HSCROLL, SB_TOP, 0);
    EXPECT_TRUE(is_in_sight(IDOK));
    ::SendMessageW(dialog.window(), WM_VSCROLL, SB_TOP, 0);
    EXPECT_TRUE(is_in_sight(IDC_LABEL));
    ::SendMessageW(dialog.window(), WM_MOUSEWHEEL, MAKEWPARAM(0, -120), 0);
    EXPECT_FALSE(is_in_sight(IDC_LABEL));
    dialog.lay_out(96);
    EXPECT_EQ(bars(), 0U);
    support::expect_tidy(dialog.window());
}

} // namespace
} // namespace girder::ui
