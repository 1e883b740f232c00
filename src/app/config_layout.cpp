#include "app/config_layout.h"

#include "localisation/string_tables.h"
#include "resource.h"
#include "string_ids.h"

#include <windows.h>

namespace tidelink {

using namespace girder::ui;

box config_dialog_layout(const control_measure& measure)
{
    constexpr int status_characters = 38;
    constexpr int list_characters = 62;
    constexpr int list_rows = 8;
    const int margin = measure.units().horizontal(7);
    const int gap = measure.units().horizontal(4);
    const int line = measure.units().vertical(4);
    const int indent = measure.units().horizontal(10);

    const box start = measure.push_button(IDC_START, {text(string_id::start), text(string_id::install)});
    const box server = row({measure.label(IDC_STATUS_LABEL), growing_wide(measure.edit(IDC_STATUS, status_characters)),
                            filler(gap), with_equal_widths(row({start, measure.push_button(IDC_STOP)}, gap))},
                           gap);
    const box who_can_connect = growing_wide(measure.wrapped_text(IDC_ACCESS_WORDS, measure.units().horizontal(135)));
    const box access =
        row({measure.push_button(IDC_SECURITY), who_can_connect, measure.drop_down_list(IDC_LANGUAGE)}, gap);
    const box sharing = column({measure.mark_button(IDC_SHARE_ALL), measure.mark_button(IDC_SHARE_SELECTED),
                                padded(growing_both(measure.list(IDC_PORTS, list_rows, list_characters)),
                                       {.left = indent, .top = 0, .right = 0, .bottom = 0}),
                                measure.mark_button(IDC_AUTO_DISCOVERY), access},
                               line);
    const box settings = measure.group(IDC_SETTINGS_FRAME, sharing);
    const box closing = with_equal_widths(
        row({measure.push_button(IDOK), measure.push_button(IDCANCEL), measure.push_button(IDC_APPLY)}, gap));
    const box bottom = row({measure.push_button(IDC_ABOUT), filler(gap), closing}, gap);
    return padded(column({server, growing_both(settings), bottom}, 2 * line),
                  {.left = margin, .top = margin, .right = margin, .bottom = margin});
}

} // namespace tidelink
