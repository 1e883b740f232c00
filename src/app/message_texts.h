#pragma once

#include "ui/message_box.h"

#include <windows.h>

#include <cstdint>
#include <exception>
#include <string>

namespace tidelink {

/// "Error {0} ({1ub016xp})" of the system's message for a Windows error code or HRESULT and the code.
std::u16string system_error_text(std::uint32_t code);

/// The text that people are shown for an error: for a failed platform call the system's message with the code, else the
/// error's own text.
std::u16string error_text(const std::exception& error);

/// "Operation Error" with one OK button.
void show_operation_error(HWND owner, std::u16string_view message);

/// The box for an error that a command ended with. Where it cannot be built or shown, the system's own box tells so.
void report_operation_error(HWND owner, const std::exception& error) noexcept;

/// A question with Yes and No. It is not asked where `owner` has been closed, such as under an earlier box.
/// \return whether Yes was pressed; Esc and the close box mean No
bool ask_yes_no(HWND owner, std::u16string_view title, std::u16string_view question, girder::ui::message_icon icon);

} // namespace tidelink
