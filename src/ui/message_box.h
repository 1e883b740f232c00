#pragma once

#include <windows.h>

#include <cstdint>
#include <span>
#include <string_view>

namespace girder::ui {

enum class message_icon : std::uint8_t { none, information, question, warning, error };

/// A button of the box: IDOK, IDCANCEL, IDABORT, IDRETRY, IDIGNORE, IDYES, IDNO, IDTRYAGAIN or IDCONTINUE, with its
/// text.
struct message_button {
    int id = IDOK;
    std::u16string_view text; ///< with its mnemonic, e.g. u"&Yes"
};

/// What a message box shows. The views need to live for the call only.
struct message_request {
    std::u16string_view title;
    std::u16string_view text;                ///< markup (ui/rich_text.h); line feeds start new lines
    message_icon icon = message_icon::none;  ///< decides the system sound too
    std::span<const message_button> buttons; ///< at least one, none twice, from left to right; the first has the focus
    int escape_button = 0;                   ///< what Esc and the close box press where there is no Cancel
    std::u16string_view check_box_text = {}; ///< empty: no check box
};

struct message_answer {
    int button = 0; ///< 0 where the owner was closed before the box was there
    bool checked = false;
};

/// Shows the program's message box, dialog template 149, until a button is pressed. Esc and the close box press Cancel,
/// else the escape button, else the only button; without any of these they do nothing. Ctrl+C copies the whole message
/// as text.
/// \param owner  disabled meanwhile; the box is centred on it and has its DPI. May be null
/// \throws system_error
message_answer show_message_box(HWND owner, const message_request& request);

} // namespace girder::ui
