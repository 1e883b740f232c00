#pragma once

#include "app/about_dialog.h"
#include "app/config_dialog.h"
#include "app/correction_box.h"
#include "app/messages.h"
#include "app/restart_request.h"
#include "app/wait_dialog.h"
#include "async/ui_thread.h"
#include "localisation/string_tables.h"
#include "resource.h"
#include "string_ids.h"
#include "ui/message_box.h"
#include "ui/modal_loop.h"

#include <windows.h>

#include <functional>
#include <ostream>

/// Every dialog of the program, shown until `look` has seen it.
namespace every_dialog {

using look = std::function<void(HWND dialog)>;

inline void show_main(const look& look)
{
    girder::ui_thread thread(tidelink::messages().ui_return);
    tidelink::restart_request restart;
    tidelink::ConfigDialog dialog(thread, restart);
    dialog.create();
    ::ShowWindow(dialog.window(), SW_SHOW);
    look(dialog.window());
}

/// Looks at a modal dialog and then ends it with a button.
class looking : support::in_modal_loop {
public:
    looking(const look& look, int button)
        : in_modal_loop([&look, button](HWND dialog) {
              look(dialog);
              ::PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
          })
    {}
};

inline void show_about(const look& look)
{
    const looking one(look, IDCANCEL);
    tidelink::AboutDialog().show(nullptr);
}

inline void show_wait(const look& look)
{
    tidelink::wait_dialog dialog({}, [] { return true; });
    const support::in_modal_loop one([&](HWND window) {
        look(window);
        dialog.close();
    });
    dialog.show(nullptr);
}

inline void show_correction(const look& look)
{
    const looking one(look, IDOK);
    const std::u16string_view key = u"Share the following ports:";
    tidelink::ask_for_correction(nullptr, key, tidelink::text(tidelink::string_id::share_following_ports));
}

inline void show_message(const look& look, std::initializer_list<girder::ui::message_button> buttons)
{
    using tidelink::text;
    namespace string_id = tidelink::string_id;
    const looking one(look, buttons.begin()->id);
    girder::ui::show_message_box(nullptr, {.title = text(string_id::operation_error),
                                           .text = text(string_id::drop_absent_ports_and_share_all),
                                           .icon = girder::ui::message_icon::warning,
                                           .buttons = buttons,
                                           .check_box_text = text(string_id::do_not_display_again)});
}

inline void show_question(const look& look)
{
    using tidelink::text;
    show_message(look, {{IDYES, text(tidelink::string_id::yes)}, {IDNO, text(tidelink::string_id::no)}});
}

inline void show_choice(const look& look)
{
    using tidelink::text;
    namespace string_id = tidelink::string_id;
    show_message(
        look,
        {{IDABORT, text(string_id::abort)}, {IDRETRY, text(string_id::retry)}, {IDIGNORE, text(string_id::ignore)}});
}

inline void show_second_choice(const look& look)
{
    using tidelink::text;
    namespace string_id = tidelink::string_id;
    show_message(look, {{IDCANCEL, text(string_id::cancel)},
                        {IDTRYAGAIN, text(string_id::try_again)},
                        {IDCONTINUE, text(string_id::continue_)}});
}

struct entry {
    const char* name;
    void (*show)(const look& look);
    int group = 0; ///< its group box
};

inline std::ostream& operator<<(std::ostream& out, const entry& row)
{
    return out << row.name;
}

inline constexpr entry all[] = {
    {"main", show_main, IDC_SETTINGS_FRAME},
    {"about", show_about},
    {"wait", show_wait},
    {"correction", show_correction},
    {"message_yes_no", show_question},
    {"message_abort_retry_ignore", show_choice},
    {"message_cancel_try_continue", show_second_choice},
};

} // namespace every_dialog
