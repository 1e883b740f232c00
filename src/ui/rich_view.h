#pragma once

#include "ui/layout.h"

#include <windows.h>

#include <commctrl.h>

#include <string_view>

namespace girder::ui {

/// The window class of the rich text view: a control that shows markup (ui/rich_text.h) read-only.
///
/// - WM_SETTEXT takes markup; WM_GETTEXT gives the text without it. Text, font and size follow the customs of a static
///   control, and so do its messages where none is named here.
/// - Text that is higher than the window scrolls.
/// - With links, or with text to scroll, it is a tab stop. Tab goes from link to link, Enter and the mouse open one.
///   Its parent is sent WM_NOTIFY with rich_view_click, and unless that answers 1 the shell opens the address.
/// - It draws in the system's colours, by Direct2D where that can be had, else by GDI.
/// - Assistive programs see the text with the links as its children (WM_GETOBJECT).
inline constexpr wchar_t rich_view_class[] = L"zel.girder.richview";

struct rich_view_click {
    NMHDR header; ///< code NM_CLICK
    std::u16string_view address;
};

/// Registers the class; again and again without harm.
/// \throws system_error
void register_rich_view();

/// Puts a view in the place of the dialog's static control `id`: with its number, size and place in the tab order, and
/// with its text as markup. Registers the class.
/// \throws system_error
void replace_by_rich_view(HWND dialog, int id);

/// The room that the view's text needs in its present font, broken to lines of at most `width` pixels.
extent rich_view_extent(HWND view, int width) noexcept;

} // namespace girder::ui
