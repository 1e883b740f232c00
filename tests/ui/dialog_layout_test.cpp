#include "support/cases.h"
#include "test_dialogs.h"
#include "ui/controls.h"
#include "ui/dialog.h"
#include "ui/dialog_layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <ostream>
#include <string>
#include <vector>

namespace girder::ui {
namespace {

using support::name_of_row;

/// A dialog with one control of each kind, arranged like the program's own.
class sample_dialog : public dialog {
public:
    explicit sample_dialog(std::u16string_view text) : text_(text) { create_modeless(IDD_PROBE, nullptr, "create"); }

    using dialog::dpi;
    using dialog::lay_out;

    int laid_out = 0;

protected:
    bool on_initialise() override
    {
        for (const int id : {IDC_LABEL, IDC_GROUP, IDC_RADIO, IDC_CHECK, IDC_PUSH})
            set_window_text(control(id), text_);
        check_list::set_up(control(IDC_LIST));
        for (std::uint32_t port = 1; port <= 20; ++port)
            check_list::append(control(IDC_LIST), u"Communications Port", port, true);
        add_combo_entry(control(IDC_COMBO), text_, 0);
        select_combo_entry(control(IDC_COMBO), 0);
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
    void on_laid_out() override { ++laid_out; }
    void on_error(std::exception_ptr) noexcept override { FAIL(); }

private:
    std::u16string_view text_;
};

RECT place_in(const dialog& parent, int id)
{
    RECT place{};
    ::GetWindowRect(parent.control(id), &place);
    ::MapWindowPoints(nullptr, parent.window(), reinterpret_cast<POINT*>(&place), 2);
    return place;
}

SIZE size_of(const RECT& place)
{
    return {.cx = place.right - place.left, .cy = place.bottom - place.top};
}

/// The size that a button asks for itself.
SIZE ideal_size(HWND button)
{
    SIZE ideal{};
    EXPECT_TRUE(Button_GetIdealSize(button, &ideal));
    return ideal;
}

LOGFONTW font_of(HWND control)
{
    LOGFONTW description{};
    ::GetObjectW(reinterpret_cast<HFONT>(::SendMessageW(control, WM_GETFONT, 0, 0)), sizeof description, &description);
    return description;
}

/// The width of the control's text in the font that the control has.
int text_width(HWND control, UINT flags = 0)
{
    const HDC screen = ::GetDC(control);
    const HGDIOBJ previous = ::SelectObject(screen, reinterpret_cast<HFONT>(::SendMessageW(control, WM_GETFONT, 0, 0)));
    RECT bounds{};
    const std::u16string text = window_text(control);
    ::DrawTextW(screen, reinterpret_cast<const wchar_t*>(text.c_str()), -1, &bounds, DT_CALCRECT | flags);
    ::SelectObject(screen, previous);
    ::ReleaseDC(control, screen);
    return bounds.right;
}

void expect_nothing_clipped(const sample_dialog& dialog)
{
    for (const int id : {IDC_RADIO, IDC_CHECK, IDC_PUSH, IDOK, IDCANCEL}) {
        const SIZE own = size_of(place_in(dialog, id));
        const SIZE ideal = ideal_size(dialog.control(id));
        EXPECT_GE(own.cx, ideal.cx) << id;
        EXPECT_GE(own.cy, ideal.cy) << id;
    }
    EXPECT_GE(size_of(place_in(dialog, IDC_LABEL)).cx, text_width(dialog.control(IDC_LABEL)));
    EXPECT_GT(size_of(place_in(dialog, IDC_GROUP)).cx, text_width(dialog.control(IDC_GROUP)));

    COMBOBOXINFO combo{};
    combo.cbSize = sizeof combo;
    ASSERT_TRUE(::GetComboBoxInfo(dialog.control(IDC_COMBO), &combo));
    EXPECT_GE(size_of(combo.rcItem).cx, text_width(dialog.control(IDC_COMBO), DT_NOPREFIX));
}

void expect_no_overlap(const sample_dialog& dialog)
{
    RECT inside{};
    ::GetClientRect(dialog.window(), &inside);
    constexpr int controls[] = {IDC_LABEL, IDC_EDIT, IDC_RADIO, IDC_CHECK, IDC_LIST,
                                IDC_COMBO, IDC_PUSH, IDOK,      IDCANCEL};
    for (const int id : controls) {
        const RECT place = place_in(dialog, id);
        RECT shared{};
        ::IntersectRect(&shared, &place, &inside);
        EXPECT_TRUE(::EqualRect(&shared, &place)) << id;
        for (const int other : controls) {
            const RECT other_place = place_in(dialog, other);
            EXPECT_TRUE(id == other || !::IntersectRect(&shared, &place, &other_place)) << id << ' ' << other;
        }
    }
}

struct text_case {
    const char* name;
    std::u16string_view text;
};

std::ostream& operator<<(std::ostream& out, const text_case& row)
{
    return out << row.name;
}

class dialog_layout_test : public testing::TestWithParam<text_case> {};

TEST_P(dialog_layout_test, fits_its_texts_at_every_dpi)
{
    sample_dialog dialog(GetParam().text);
    for (const UINT dpi : {96U, 122U, 144U, 192U}) {
        SCOPED_TRACE(dpi);
        dialog.lay_out(dpi);
        EXPECT_EQ(dialog.dpi(), dpi);
        EXPECT_EQ(font_of(dialog.control(IDC_LABEL)).lfHeight, -::MulDiv(8, static_cast<int>(dpi), 72));
        expect_nothing_clipped(dialog);
        expect_no_overlap(dialog);
    }
    EXPECT_EQ(dialog.laid_out, 4);
}

INSTANTIATE_TEST_SUITE_P(texts, dialog_layout_test,
                         testing::ValuesIn(std::to_array<text_case>({
                             {"short", u"OK"},
                             {"with_mnemonic", u"Share the &following ports:"},
                             {"pseudo_translation",
                              u"[Sh\u00E4r\u00EB th\u00EB f\u00F6ll\u00F6w\u00EFng p\u00F6rts: xxxxxxxxxxxxxx]"},
                             {"wide_letters", u"WWWWWWWWWWWWWWWWWWWWWWWW"},
                             {"japanese", u"\u6B21\u306E\u30DD\u30FC\u30C8\u3092\u5171\u6709\u3059\u308B"},
                         })),
                         name_of_row);

RECT window_rect(const dialog& of)
{
    RECT place{};
    ::GetWindowRect(of.window(), &place);
    return place;
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
    sample_dialog dialog(u"Enable auto-discovery");
    change_dpi(dialog, 144, {.left = 0, .top = 0, .right = 10, .bottom = 10});
    EXPECT_EQ(dialog.dpi(), 0U) << "nothing to lay out yet";

    dialog.lay_out(96);
    const RECT first = window_rect(dialog);
    for (const int dpi : {122, 144, 192}) {
        SCOPED_TRACE(dpi);
        change_dpi(dialog, static_cast<UINT>(dpi), scaled(first, 96, dpi));
        const RECT there = window_rect(dialog);
        EXPECT_EQ(there.left, 40);
        EXPECT_EQ(there.top, 30);
        EXPECT_EQ(font_of(dialog.control(IDOK)).lfHeight, -::MulDiv(8, dpi, 72));
        EXPECT_GE(size_of(there).cx, size_of(scaled(first, 96, dpi)).cx);
        expect_nothing_clipped(dialog);
        expect_no_overlap(dialog);

        change_dpi(dialog, 96, scaled(there, dpi, 96));
        EXPECT_NEAR(size_of(window_rect(dialog)).cx, size_of(first).cx, size_of(first).cx / 20);
        EXPECT_NEAR(size_of(window_rect(dialog)).cy, size_of(first).cy, size_of(first).cy / 20);
    }
}

TEST(dpi_change_test, stays_the_same_for_the_dpi_it_has)
{
    sample_dialog dialog(u"Enable auto-discovery");
    dialog.lay_out(144);
    const RECT before = window_rect(dialog);
    change_dpi(dialog, 144, {.left = 0, .top = 0, .right = 2000, .bottom = 2000});
    const RECT after = window_rect(dialog);
    EXPECT_TRUE(::EqualRect(&before, &after));
}

TEST(lay_out_test, dialog_never_exceeds_the_work_area)
{
    RECT work{};
    ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const std::u16string text(400, u'W');
    sample_dialog dialog(text);
    dialog.lay_out(192);
    const RECT place = window_rect(dialog);
    EXPECT_GE(place.left, work.left);
    EXPECT_LE(place.right, work.right);
    EXPECT_LE(place.bottom, work.bottom);
}

TEST(lay_out_test, list_gives_way_before_anything_leaves_the_screen)
{
    RECT work{};
    ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    sample_dialog dialog(u"Share all ports");
    dialog.lay_out(96);
    const int factor = 1 + work.bottom / size_of(window_rect(dialog)).cy;
    const int scaled_list = size_of(place_in(dialog, IDC_LIST)).cy * factor;
    dialog.lay_out(static_cast<UINT>(96 * factor));
    EXPECT_LT(size_of(place_in(dialog, IDC_LIST)).cy, scaled_list);
    expect_no_overlap(dialog);
    EXPECT_LE(window_rect(dialog).bottom, work.bottom);
}

TEST(check_list_test, column_is_as_wide_as_the_list)
{
    sample_dialog dialog(u"Share all ports");
    dialog.lay_out(96);
    const HWND list = dialog.control(IDC_LIST);
    check_list::fit_column(list);
    RECT inside{};
    ::GetClientRect(list, &inside);
    EXPECT_EQ(::SendMessageW(list, LVM_GETCOLUMNWIDTH, 0, 0), inside.right);
    EXPECT_EQ(::GetWindowLongPtrW(list, GWL_STYLE) & WS_HSCROLL, 0);
}

} // namespace
} // namespace girder::ui
