#pragma once

#include <windows.h>

#include <commctrl.h>

#include <cstdint>
#include <string>
#include <string_view>

// Thin, typed functions over the messages of the standard controls. Each takes the control's window; a control that
// does not exist gives the neutral answer.

namespace girder::ui {

/// The text of a window of this process, of any length.
std::u16string window_text(HWND window);
void set_window_text(HWND window, std::u16string_view text);
/// Sets the text where it is another one; otherwise the window is not drawn again, nor are screen readers told. Not for
/// the rich text view, whose text says less than the markup that it was set to.
void change_window_text(HWND window, std::u16string_view text);

/// Disabling the control that has the focus passes the focus on: the keyboard would be without effect.
void set_enabled(HWND control, bool enabled) noexcept;

/// Lets Ctrl+A select the whole text of a one-line edit, which not every system does by itself.
void select_all_by_keyboard(HWND edit) noexcept;

bool is_checked_button(HWND button) noexcept;
void set_checked_button(HWND button, bool checked) noexcept;

/// A combo box whose entries carry an index into the caller's own list.
void add_combo_entry(HWND combo, std::u16string_view text, std::size_t index);
void select_combo_entry(HWND combo, int position) noexcept;
/// The index that the selected entry carries, -1 when none is selected.
std::ptrdiff_t selected_combo_index(HWND combo) noexcept;

/// A report list of one column with check boxes; its column follows the list's width.
namespace check_list {

/// State bits that hold the check mark's image index, from bit 12 on: 1 unchecked, 2 checked.
inline constexpr UINT image_mask = LVIS_STATEIMAGEMASK;

void set_up(HWND list);
/// Appends an item that carries `parameter`.
void append(HWND list, std::u16string_view text, std::uint32_t parameter, bool checked);
/// Selects the first item for the keyboard to begin at, unless it has been at one before.
void begin_at_first(HWND list) noexcept;
int count(HWND list) noexcept;
/// 0 when the item has no check mark.
unsigned state_image(HWND list, int item) noexcept;
std::uint32_t parameter(HWND list, int item) noexcept;
/// Makes the column as wide as the list's inside, or as its longest text where that is wider.
void fit_column(HWND list) noexcept;

} // namespace check_list
} // namespace girder::ui
