#include "app/about_dialog.h"

#include "base/system_error.h"
#include "format/compile.h"
#include "format/format.h"
#include "localisation/string_tables.h"
#include "resource.h"
#include "string_ids.h"
#include "ui/controls.h"
#include "ui/drawing.h"
#include "ui/icons.h"
#include "ui/rich_text.h"
#include "ui/rich_view.h"

#include <algorithm>
#include <utility>

namespace tidelink {

using namespace girder::ui;

namespace {

constexpr std::u16string_view product_name = u"Zelmark Tidelink Port Server";

/// The link below the text.
std::u16string vendor_link(std::u16string_view about)
{
    // The vendor's address is declared with the About text.
    constexpr std::u16string_view scheme = u"https://";
    const rich_text read = parse_markup(about);
    if (read.addresses.empty())
        return {};
    const std::u16string& vendor = read.addresses.back();
    const std::u16string_view shown =
        std::u16string_view(vendor).substr(vendor.starts_with(scheme) ? scheme.size() : 0);
    return link_markup(vendor, shown);
}

} // namespace

std::u16string about_text(const girder::product_version& version)
{
    constexpr std::u16string_view further_line;
    std::u16string filled = fmtkit::format(fmtkit::compile(text(string_id::about_text)), product_name,
                                           std::uint32_t{version.major}, std::uint32_t{version.minor},
                                           std::uint32_t{version.build}, std::uint32_t{version.revision}, further_line);
    // Without the further line one blank line is enough where it would be.
    constexpr std::u16string_view blank_lines = u"\n\n\n";
    for (std::size_t at = filled.find(blank_lines); at != std::u16string::npos; at = filled.find(blank_lines))
        filled.erase(at, 1);
    return filled;
}

void AboutDialog::show(HWND owner)
{
    if (!girder::ui::drawing::prepare(owner))
        return;
    owner_ = owner;
    run_modal(IDD_ABOUT, owner);
}

bool AboutDialog::on_initialise()
{
    const std::u16string about = about_text(girder::read_file_version());
    set_window_text(window(), text(string_id::about_title));
    // What a screen reader calls the picture.
    set_window_text(control(IDC_ABOUT_LOGO), product_name);
    set_window_text(control(IDC_ABOUT_TEXT), about);
    set_window_text(control(IDC_ABOUT_LINKS), vendor_link(about) + further_links_);
    set_window_text(control(IDCANCEL), text(string_id::close));
    replace_by_rich_view(window(), IDC_ABOUT_TEXT);
    replace_by_rich_view(window(), IDC_ABOUT_LINKS);
    try {
        logo_.emplace(IDP_LOGO);
    } catch (const girder::system_error&) {
        // The icon shows the same picture.
        logo_.reset();
    }
    lay_out_over(owner_);
    ::SetFocus(control(IDCANCEL));
    return false;
}

bool AboutDialog::on_command(WPARAM command, LPARAM)
{
    if (LOWORD(command) != IDCANCEL)
        return false;
    end(IDCANCEL);
    return true;
}

bool AboutDialog::on_message(UINT message, WPARAM wparam, LPARAM lparam, LRESULT&)
{
    if (message != WM_DRAWITEM || wparam != IDC_ABOUT_LOGO)
        return false;
    draw_logo(*reinterpret_cast<const DRAWITEMSTRUCT*>(lparam));
    return true;
}

void AboutDialog::on_error(std::exception_ptr error) noexcept
{
    end_with(std::move(error));
}

/// The picture is square, its place nearly.
void AboutDialog::draw_logo(const DRAWITEMSTRUCT& place)
{
    const RECT& all = place.rcItem;
    const LONG side = std::min(all.right - all.left, all.bottom - all.top);
    const LONG left = all.left + (all.right - all.left - side) / 2;
    const LONG top = all.top + (all.bottom - all.top - side) / 2;
    ::FillRect(place.hDC, &all, ::GetSysColorBrush(COLOR_BTNFACE));
    const RECT square{.left = left, .top = top, .right = left + side, .bottom = top + side};
    if (logo_ && logo_->draw(place.hDC, square, ::GetSysColor(COLOR_BTNFACE)))
        return;
    const unique_icon icon = load_icon(IDI_PROGRAM, side);
    ::DrawIconEx(place.hDC, left, top, icon.get(), side, side, 0, nullptr, DI_NORMAL);
}

box AboutDialog::layout(const control_measure& measure) const
{
    constexpr int logo_width = 48;
    constexpr int logo_height = 44;
    constexpr int text_width = 208;
    constexpr int text_height = 63;
    const dialog_units& units = measure.units();
    const int margin = units.horizontal(7);
    const extent logo{.width = units.horizontal(logo_width), .height = units.vertical(logo_height)};
    box about = measure.rich_text(IDC_ABOUT_TEXT, units.horizontal(2 * text_width));
    about.natural.width = std::max(about.natural.width, units.horizontal(text_width));
    about.height_at = [at = std::move(about.height_at), least = units.vertical(text_height)](int width) {
        return std::max(at(width), least);
    };
    const box picture = padded(control_box(IDC_ABOUT_LOGO, logo),
                               {.left = units.horizontal(5), .top = 0, .right = units.horizontal(5), .bottom = 0});
    const box upper = row({at_top(picture), growing_wide(std::move(about))}, margin);
    const box lower = row(
        {growing_wide(measure.rich_text(IDC_ABOUT_LINKS, units.horizontal(text_width))), measure.push_button(IDCANCEL)},
        margin);
    return padded(column({upper, lower}, units.vertical(5)),
                  {.left = margin, .top = margin, .right = margin, .bottom = margin});
}

} // namespace tidelink
