#include "app/message_texts.h"

#include "app/error_log.h"
#include "base/system_error.h"
#include "base/utf.h"
#include "base/win32_error.h"
#include "format/compile.h"
#include "format/format.h"
#include "localisation/string_tables.h"
#include "string_ids.h"
#include "ui/rich_text.h"

namespace tidelink {

using girder::ui::message_button;
using girder::ui::message_icon;

std::u16string system_error_text(std::uint32_t code)
{
    std::u16string message = girder::system_message(code);
    if (message.empty())
        message = text(string_id::unknown_error);
    return fmtkit::format(fmtkit::compile(text(string_id::error_with_code)), message, code);
}

std::u16string error_text(const std::exception& error)
{
    const auto* const failed_call = dynamic_cast<const girder::system_error*>(&error);
    return failed_call ? system_error_text(failed_call->code()) : girder::to_utf16(error.what());
}

void show_operation_error(HWND owner, std::u16string_view message)
{
    const message_button ok[] = {{.id = IDOK, .text = text(string_id::ok)}};
    girder::ui::show_message_box(owner, {.title = text(string_id::operation_error),
                                         .text = girder::ui::escaped_markup(message),
                                         .icon = message_icon::error,
                                         .buttons = ok});
}

void report_operation_error(HWND owner, const std::exception& error) noexcept
try {
    show_operation_error(owner, error_text(error));
} catch (...) {
    log_error(std::current_exception());
    ::MessageBoxW(owner, L"The operation failed, and its error could not be shown.", L"Operation Error",
                  MB_OK | MB_ICONERROR);
}

bool ask_yes_no(HWND owner, std::u16string_view title, std::u16string_view question, message_icon icon)
{
    const message_button answers[] = {{.id = IDYES, .text = text(string_id::yes)},
                                      {.id = IDNO, .text = text(string_id::no)}};
    if (!::IsWindow(owner))
        return false;
    return girder::ui::show_message_box(
               owner, {.title = title, .text = question, .icon = icon, .buttons = answers, .escape_button = IDNO})
               .button == IDYES;
}

} // namespace tidelink
