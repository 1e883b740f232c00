#include "ui/control_measure.h"

#include "base/wide.h"
#include "ui/controls.h"
#include "ui/rich_view.h"

#include <algorithm>
#include <utility>

namespace girder::ui {
namespace {

// Customary sizes in dialog units.
constexpr int button_width = 50;
constexpr int button_height = 14;
constexpr int button_padding = 6;
constexpr int mark_height = 10;
constexpr int mark_gap = 3;
constexpr int edit_margin = 3;
constexpr int row_height = 10;
constexpr int least_rows = 3;
constexpr int average_character = 4;
constexpr int group_margin = 7;
constexpr int group_top = 13;

std::u16string combo_entry(HWND combo, WPARAM position)
{
    const LRESULT length = ::SendMessageW(combo, CB_GETLBTEXTLEN, position, 0);
    if (length == CB_ERR)
        return {};
    std::u16string text(static_cast<std::size_t>(length) + 1, u'\0');
    ::SendMessageW(combo, CB_GETLBTEXT, position, reinterpret_cast<LPARAM>(text.data()));
    text.pop_back();
    return text;
}

/// How far below its top edge a one-line edit draws its text: it does not centre it.
int text_top(HWND edit)
{
    RECT outer{};
    RECT client{};
    RECT text{};
    ::GetWindowRect(edit, &outer);
    ::GetClientRect(edit, &client);
    ::SendMessageW(edit, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&text));
    return static_cast<int>(text.top + ((outer.bottom - outer.top) - client.bottom) / 2);
}

} // namespace

control_measure::control_measure(HWND dialog, HFONT font, UINT dpi) : dialog_(dialog), text_(font), units_(font, dpi)
{}

int control_measure::metric(int index) const noexcept
{
    return ::GetSystemMetricsForDpi(index, units_.dpi());
}

extent control_measure::label_extent(int id) const
{
    return text_.label(window_text(control(id)));
}

box control_measure::push_button(int id) const
{
    return push_button(id, {});
}

box control_measure::push_button(int id, std::initializer_list<std::u16string_view> captions) const
{
    extent caption = label_extent(id);
    for (const std::u16string_view other : captions) {
        const extent size = text_.label(other);
        caption = {.width = std::max(caption.width, size.width), .height = std::max(caption.height, size.height)};
    }
    return control_box(
        id, {.width = std::max(units_.horizontal(button_width), caption.width + 2 * units_.horizontal(button_padding)),
             .height = std::max(units_.vertical(button_height), caption.height + units_.vertical(button_padding))});
}

box control_measure::mark_button(int id) const
{
    const extent caption = label_extent(id);
    const int mark = metric(SM_CXMENUCHECK) + units_.horizontal(mark_gap);
    return control_box(id, {.width = mark + caption.width + units_.horizontal(mark_gap),
                            .height = std::max(units_.vertical(mark_height), caption.height)});
}

box control_measure::label(int id) const
{
    return control_box(id, label_extent(id));
}

box control_measure::wrapped_text(int id, int widest) const
{
    const std::u16string text = window_text(control(id));
    return wrapped_box(id, text_.wrapped(text, widest).width,
                       [this, text](int width) { return text_.wrapped(text, width).height; });
}

box control_measure::rich_text(int id, int widest) const
{
    const HWND view = control(id);
    return wrapped_box(id, rich_view_extent(view, widest).width,
                       [view](int width) { return rich_view_extent(view, width).height; });
}

box control_measure::edit(int id, int characters) const
{
    const HWND edit = control(id);
    const extent text = text_.line(window_text(edit));
    const int wanted = units_.horizontal(characters * average_character);
    return control_box(id, {.width = std::max(wanted, text.width + 2 * units_.horizontal(edit_margin)),
                            .height = text_.line(u" ").height + 2 * text_top(edit)});
}

box control_measure::drop_down_list(int id) const
{
    const HWND combo = control(id);
    const LRESULT entries = ::SendMessageW(combo, CB_GETCOUNT, 0, 0);
    int widest = units_.horizontal(button_width);
    for (LRESULT i = 0; i < entries; ++i)
        widest = std::max(widest, text_.line(combo_entry(combo, static_cast<WPARAM>(i))).width);
    const auto selection = static_cast<int>(::SendMessageW(combo, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1), 0));
    return control_box(id, {.width = widest + metric(SM_CXVSCROLL) + 2 * units_.horizontal(mark_gap),
                            .height = selection + 2 * (metric(SM_CYEDGE) + metric(SM_CYBORDER))});
}

box control_measure::list(int id, int rows, int characters) const
{
    const int width = units_.horizontal(characters * average_character) + metric(SM_CXVSCROLL);
    const auto height_of = [&](int shown) { return units_.vertical(shown * row_height) + 2 * metric(SM_CYBORDER); };
    return shrinking_to({.width = width, .height = height_of(std::min(rows, least_rows))},
                        control_box(id, {.width = width, .height = height_of(rows)}));
}

box control_measure::group(int id, box inner) const
{
    const int side = units_.horizontal(group_margin);
    return framed(
        id, std::move(inner),
        {.left = side, .top = units_.vertical(group_top), .right = side, .bottom = units_.vertical(group_margin)},
        label_extent(id).width + 4 * side);
}

} // namespace girder::ui
