#include "app/wait_dialog.h"

#include "localisation/string_tables.h"
#include "resource.h"
#include "string_ids.h"
#include "ui/controls.h"

#include <commctrl.h>

#include <utility>

namespace tidelink {

using namespace girder::ui;

wait_dialog::wait_dialog(girder::cancellation_source cancel, std::function<bool()> still_wanted)
    : cancel_(std::move(cancel)), still_wanted_(std::move(still_wanted))
{}

void wait_dialog::show(HWND owner)
{
    owner_ = owner;
    run_modal(IDD_WAIT, owner);
}

bool wait_dialog::on_initialise()
{
    constexpr LPARAM marquee_step_ms = 30;
    set_window_text(window(), text(string_id::please_wait));
    set_window_text(control(IDC_WAIT_TEXT), text(string_id::please_wait_text));
    ::SendMessageW(control(IDC_WAIT_PROGRESS), PBM_SETMARQUEE, TRUE, marquee_step_ms);
    lay_out_over(owner_);
    // No control takes the keyboard, and Esc has to arrive somewhere.
    ::SetFocus(window());
    close_unless_wanted();
    return false;
}

bool wait_dialog::on_command(WPARAM command, LPARAM)
{
    if (LOWORD(command) != IDCANCEL)
        return false;
    cancel_.request();
    close_unless_wanted();
    return true;
}

bool wait_dialog::on_message(UINT message, WPARAM, LPARAM, LRESULT& result)
{
    if (message != WM_SETCURSOR)
        return false;
    ::SetCursor(::LoadCursorW(nullptr, IDC_WAIT));
    result = TRUE;
    return true;
}

void wait_dialog::on_error(std::exception_ptr error) noexcept
{
    end_with(std::move(error));
}

box wait_dialog::layout(const control_measure& measure) const
{
    const dialog_units& units = measure.units();
    const extent bar{.width = units.horizontal(270), .height = units.vertical(14)};
    return padded(
        column({growing_wide(measure.label(IDC_WAIT_TEXT)), growing_wide(control_box(IDC_WAIT_PROGRESS, bar))},
               units.vertical(8)),
        {.left = units.horizontal(19),
         .top = units.vertical(19),
         .right = units.horizontal(20),
         .bottom = units.vertical(14)});
}

void wait_dialog::close_unless_wanted()
{
    if (!still_wanted_())
        close();
}

} // namespace tidelink
