#include "ui_driver/list_view.h"

#include "ui_driver/polling.h"
#include "ui_driver/remote_memory.h"

#include <commctrl.h>

#include <array>

namespace ui_driver {
namespace {

constexpr std::size_t longest_text = 512;
constexpr unsigned unchecked_image = 1;

} // namespace

bool list_view::checked(int row) const
{
    const auto state = send(list_.handle(), LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_STATEIMAGEMASK);
    return (static_cast<unsigned>(state) & LVIS_STATEIMAGEMASK) >> 12U != unchecked_image;
}

std::vector<list_row> list_view::rows() const
{
    const auto count = static_cast<int>(send(list_.handle(), LVM_GETITEMCOUNT));
    const remote_memory memory(list_.handle(), sizeof(LVITEMW) + longest_text * sizeof(wchar_t));
    std::vector<list_row> rows;
    for (int row = 0; row < count; ++row) {
        LVITEMW item{};
        item.mask = LVIF_TEXT | LVIF_PARAM;
        item.iItem = row;
        item.pszText = reinterpret_cast<wchar_t*>(memory.address(sizeof(LVITEMW)));
        item.cchTextMax = longest_text;
        memory.write(&item, sizeof item);
        send(list_.handle(), LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(memory.address()));
        memory.read(&item, sizeof item);

        std::array<char16_t, longest_text> text{};
        memory.read(text.data(), sizeof text, sizeof(LVITEMW));
        text.back() = u'\0';
        rows.push_back({.text = text.data(), .parameter = item.lParam, .checked = checked(row)});
    }
    return rows;
}

RECT list_view::rectangle_of(int row, LONG part) const
{
    const remote_memory memory(list_.handle(), sizeof(RECT));
    RECT rectangle{.left = part, .top = 0, .right = 0, .bottom = 0};
    memory.write(&rectangle, sizeof rectangle);
    send(list_.handle(), LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(memory.address()));
    memory.read(&rectangle, sizeof rectangle);
    return rectangle;
}

void list_view::click_at(LONG x, LONG y) const
{
    const LPARAM point = MAKELPARAM(x, y);
    ::PostMessageW(list_.handle(), WM_LBUTTONDOWN, MK_LBUTTON, point);
    ::PostMessageW(list_.handle(), WM_LBUTTONUP, 0, point);
}

void list_view::toggle(int row) const
{
    send(list_.handle(), LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
    const RECT whole = rectangle_of(row, LVIR_BOUNDS);
    const RECT label = rectangle_of(row, LVIR_LABEL);
    const bool before = checked(row);
    // The check box stands between the left edge of the row and its text.
    click_at((whole.left + label.left) / 2, (whole.top + whole.bottom) / 2);
    if (!eventually([&] { return checked(row) != before; }))
        throw timed_out("a check box does not react to the mouse");
}

void list_view::click_text(int row) const
{
    send(list_.handle(), LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
    const RECT label = rectangle_of(row, LVIR_LABEL);
    click_at((label.left + label.right) / 2, (label.top + label.bottom) / 2);
    if (!eventually([&] { return selected() == row; }))
        throw timed_out("a row does not react to the mouse");
}

int list_view::selected() const
{
    return static_cast<int>(send(list_.handle(), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

} // namespace ui_driver
