#include "ui/controls.h"

#include "base/wide.h"

#include <algorithm>

namespace girder::ui {
namespace {

LRESULT CALLBACK select_all_filter(HWND edit, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                   DWORD_PTR) noexcept
{
    constexpr WPARAM control_a = 1;
    if (message == WM_CHAR && wparam == control_a) {
        ::SendMessageW(edit, EM_SETSEL, 0, -1);
        return 0;
    }
    if (message == WM_NCDESTROY)
        ::RemoveWindowSubclass(edit, select_all_filter, id);
    return ::DefSubclassProc(edit, message, wparam, lparam);
}

} // namespace

std::u16string window_text(HWND window)
{
    std::u16string text(static_cast<std::size_t>(::GetWindowTextLengthW(window)) + 1, u'\0');
    const int length = ::GetWindowTextW(window, as_wide(text.data()), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

void set_window_text(HWND window, std::u16string_view text)
{
    ::SetWindowTextW(window, as_wide(std::u16string(text)));
}

void change_window_text(HWND window, std::u16string_view text)
{
    if (window_text(window) != text)
        set_window_text(window, text);
}

void set_enabled(HWND control, bool enabled) noexcept
{
    if (!enabled && ::GetFocus() == control)
        ::SendMessageW(::GetParent(control), WM_NEXTDLGCTL, 0, FALSE);
    ::EnableWindow(control, enabled);
}

void select_all_by_keyboard(HWND edit) noexcept
{
    ::SetWindowSubclass(edit, select_all_filter, 0, 0);
}

bool is_checked_button(HWND button) noexcept
{
    return ::SendMessageW(button, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void set_checked_button(HWND button, bool checked) noexcept
{
    ::SendMessageW(button, BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

void add_combo_entry(HWND combo, std::u16string_view text, std::size_t index)
{
    const std::u16string terminated(text);
    const LRESULT position = ::SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(as_wide(terminated)));
    ::SendMessageW(combo, CB_SETITEMDATA, static_cast<WPARAM>(position), static_cast<LPARAM>(index));
}

void select_combo_entry(HWND combo, int position) noexcept
{
    ::SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(position), 0);
}

std::ptrdiff_t selected_combo_index(HWND combo) noexcept
{
    const LRESULT position = ::SendMessageW(combo, CB_GETCURSEL, 0, 0);
    if (position == CB_ERR)
        return -1;
    return ::SendMessageW(combo, CB_GETITEMDATA, static_cast<WPARAM>(position), 0);
}

namespace check_list {

void set_up(HWND list)
{
    constexpr DWORD style = LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP;
    ::SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, style, style);
    LVCOLUMNW column{};
    column.mask = LVCF_WIDTH;
    ::SendMessageW(list, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
}

void append(HWND list, std::u16string_view text, std::uint32_t parameter, bool checked)
{
    std::u16string terminated(text);
    LVITEMW item{};
    item.mask = LVIF_TEXT;
    item.iItem = count(list);
    item.pszText = as_wide(terminated.data());
    item.iItem = static_cast<int>(::SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
    item.mask = LVIF_PARAM;
    item.lParam = static_cast<LPARAM>(parameter);
    ::SendMessageW(list, LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    LVITEMW mark{};
    mark.stateMask = image_mask;
    mark.state = ((checked ? 1U : 0U) << 12) + 0x1000;
    ::SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(item.iItem), reinterpret_cast<LPARAM>(&mark));
}

void begin_at_first(HWND list) noexcept
{
    if (::SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED) >= 0)
        return;
    LVITEMW item{};
    item.stateMask = LVIS_FOCUSED | LVIS_SELECTED;
    item.state = item.stateMask;
    ::SendMessageW(list, LVM_SETITEMSTATE, 0, reinterpret_cast<LPARAM>(&item));
}

int count(HWND list) noexcept
{
    return static_cast<int>(::SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
}

unsigned state_image(HWND list, int item) noexcept
{
    return static_cast<unsigned>(
               ::SendMessageW(list, LVM_GETITEMSTATE, static_cast<WPARAM>(item), LPARAM{image_mask})) >>
           12;
}

std::uint32_t parameter(HWND list, int item) noexcept
{
    LVITEMW asked{};
    asked.mask = LVIF_PARAM;
    asked.iItem = item;
    ::SendMessageW(list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&asked));
    return static_cast<std::uint32_t>(asked.lParam);
}

void fit_column(HWND list) noexcept
{
    ::SendMessageW(list, LVM_SETCOLUMNWIDTH, 0, LPARAM{LVSCW_AUTOSIZE});
    RECT inside{};
    ::GetClientRect(list, &inside);
    const auto longest = static_cast<int>(::SendMessageW(list, LVM_GETCOLUMNWIDTH, 0, 0));
    ::SendMessageW(list, LVM_SETCOLUMNWIDTH, 0, std::max(longest, static_cast<int>(inside.right)));
}

} // namespace check_list
} // namespace girder::ui
