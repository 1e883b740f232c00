#include "app/correction_box.h"

#include "localisation/string_tables.h"
#include "resource.h"
#include "string_ids.h"
#include "ui/controls.h"
#include "ui/dialog.h"

#include <utility>

namespace tidelink {
namespace {

using namespace girder::ui;

class correction_box : public dialog {
public:
    correction_box(HWND owner, std::u16string_view key, std::u16string_view text)
        : owner_(owner), key_(key), text_(text)
    {}

    std::optional<std::u16string> ask()
    {
        if (run_modal(IDD_CORRECTION, owner_) != IDOK)
            return std::nullopt;
        return corrected_;
    }

protected:
    bool on_initialise() override
    {
        set_window_text(window(), key_);
        // Seen by screen readers alone.
        set_window_text(control(IDC_CORRECTION_LABEL), key_);
        set_window_text(control(IDC_CORRECTION), text_);
        set_window_text(control(IDOK), text(string_id::ok));
        set_window_text(control(IDCANCEL), text(string_id::cancel));
        lay_out_over(owner_);
        return true;
    }

    bool on_command(WPARAM command, LPARAM) override
    {
        if (HIWORD(command) != BN_CLICKED)
            return false;
        corrected_ = window_text(control(IDC_CORRECTION));
        end(LOWORD(command));
        return true;
    }

    void on_error(std::exception_ptr error) noexcept override { end_with(std::move(error)); }

    box layout(const control_measure& measure) const override
    {
        constexpr int shown_characters = 60;
        const int margin = measure.units().horizontal(7);
        const int gap = measure.units().horizontal(4);
        // A longer text scrolls.
        box edit = control_box(IDC_CORRECTION, {.width = measure.units().horizontal(4 * shown_characters),
                                                .height = measure.edit(IDC_CORRECTION, 0).natural.height});
        box buttons =
            row({filler(), with_equal_widths(row({measure.push_button(IDOK), measure.push_button(IDCANCEL)}, gap))}, 0);
        return padded(column({growing_wide(std::move(edit)), std::move(buttons)}, margin),
                      {.left = margin, .top = margin, .right = margin, .bottom = margin});
    }

private:
    HWND owner_;
    std::u16string_view key_;
    std::u16string_view text_;
    std::u16string corrected_;
};

} // namespace

std::optional<std::u16string> ask_for_correction(HWND owner, std::u16string_view key, std::u16string_view text)
{
    return correction_box(owner, key, text).ask();
}

} // namespace tidelink
