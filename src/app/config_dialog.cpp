#include "app/config_dialog.h"

#include "app/about_dialog.h"
#include "app/access_command.h"
#include "app/config_layout.h"
#include "app/error_log.h"
#include "app/message_texts.h"
#include "app/messages.h"
#include "base/debug_log.h"
#include "base/path.h"
#include "base/program.h"
#include "base/utf.h"
#include "base/win32_error.h"
#include "format/compile.h"
#include "format/format.h"
#include "format/literals.h"
#include "localisation/language_packs.h"
#include "localisation/string_tables.h"
#include "ports/serial_ports.h"
#include "resource.h"
#include "string_ids.h"
#include "ui/controls.h"
#include "ui/dialog_layout.h"
#include "ui/dpi.h"

#include <utility>

namespace tidelink {
namespace {

using namespace fmtkit::literals;
using namespace girder::ui;

constexpr std::u16string_view built_in_language_name = u"English";

struct share_button {
    int control;
    share_mode mode;
};

/// In the order in which they are looked at.
constexpr share_button share_buttons[] = {{IDC_SHARE_ALL, share_mode::all_ports},
                                          {IDC_SHARE_SELECTED, share_mode::listed_ports}};

struct control_text {
    int control;
    std::uint32_t id;
};

constexpr control_text control_texts[] = {
    {IDC_START, string_id::start},
    {IDC_STOP, string_id::stop},
    {IDC_SETTINGS_FRAME, string_id::settings},
    {IDC_SHARE_ALL, string_id::share_all_ports},
    {IDC_SHARE_SELECTED, string_id::share_following_ports},
    {IDC_AUTO_DISCOVERY, string_id::enable_auto_discovery},
    {IDC_SECURITY, string_id::security},
    {IDC_ABOUT, string_id::about},
    {IDOK, string_id::ok},
    {IDCANCEL, string_id::cancel},
    {IDC_APPLY, string_id::apply},
};

constexpr control_text control_tips[] = {
    {IDC_SHARE_SELECTED, string_id::share_following_ports_tip},
    {IDC_AUTO_DISCOVERY, string_id::auto_discovery_tip},
    {IDC_SECURITY, string_id::security_tip},
    {IDC_LANGUAGE, string_id::language_label},
};

/// The first items with a comma between them; an ellipsis stands for those that a message has no room for.
template <typename Item, typename ToText>
std::u16string joined(const std::vector<Item>& items, ToText to_text)
{
    constexpr std::size_t most = 20;
    std::u16string text;
    for (std::size_t i = 0; i < items.size() && i < most; ++i) {
        if (i > 0)
            text += u", ";
        text += to_text(items[i]);
    }
    return items.size() > most ? text + u", …" : text;
}

} // namespace

constexpr command_route<ConfigDialog> ConfigDialog::commands[] = {
    {IDOK, BN_CLICKED, &ConfigDialog::on_ok},
    {IDCANCEL, BN_CLICKED, &ConfigDialog::on_cancel},
    {IDC_APPLY, BN_CLICKED, &ConfigDialog::on_apply},
    {IDC_SHARE_ALL, BN_CLICKED, &ConfigDialog::on_share_mode_selected},
    {IDC_SHARE_SELECTED, BN_CLICKED, &ConfigDialog::on_share_mode_selected},
    {IDC_AUTO_DISCOVERY, BN_CLICKED, &ConfigDialog::on_changed},
    {IDC_ABOUT, BN_CLICKED, &ConfigDialog::on_about},
    {IDC_SECURITY, BN_CLICKED, &ConfigDialog::on_security},
    {IDC_START, BN_CLICKED, &ConfigDialog::on_start},
    {IDC_STOP, BN_CLICKED, &ConfigDialog::on_stop},
    {IDC_LANGUAGE, CBN_SELCHANGE, &ConfigDialog::on_language_selected},
};

ConfigDialog::ConfigDialog(girder::ui_thread& thread, restart_request& restart)
    : ConfigDialog(thread, restart, LoadSettingsTolerantly())
{}

ConfigDialog::ConfigDialog(girder::ui_thread& thread, restart_request& restart, LoadedSettings loaded)
    : thread_(thread), restart_(restart), failures_(loaded.failures), model_(std::move(loaded))
{
    for (const LoadFailure& failure : failures_)
        girder::log_failure({.code = failure.code, .message = failure.text, .context = girder::to_utf8(failure.name)});
    set_command_message(messages().process_command);
    model_.adopt_language(tidelink::initialise(girder::folder_of(girder::program_path()), model_.settings().language));
}

void ConfigDialog::look_for_updates(update_offer::settings settings)
{
    update_.emplace(thread_, *this, std::move(settings),
                    update_offer::changes{.pending = [this] { return model_.dirty(); },
                                          .apply = [this] { return ApplySettings(); }});
}

void ConfigDialog::create()
{
    create_modeless(IDD_CONFIG, nullptr, "CreateDialogParam failed for main dialog");
}

void ConfigDialog::show(int command) noexcept
{
    ::ShowWindow(window(), command);
    shown_ = true;
}

bool ConfigDialog::on_initialise()
{
    check_list::set_up(control(IDC_PORTS));
    set_texts();
    fill_languages();
    set_checked_button(control(IDC_AUTO_DISCOVERY), model_.settings().autoDiscovery);
    for (const auto& [id, mode] : share_buttons)
        set_checked_button(control(id), mode == model_.initial_share_mode());
    fill_ports();
    show_who_can_connect();
    model_.clear_dirty();
    show_dirty();
    service_.RefreshServiceStatus();
    enable_list_by_share_mode();
    lay_out(::GetDpiForWindow(window()));
    finish_later();
    // The status comes first in the tab order, but what an administrator is here for is the choice of ports.
    ::SetFocus(control(model_.initial_share_mode() == share_mode::all_ports ? IDC_SHARE_ALL : IDC_SHARE_SELECTED));
    return false;
}

void ConfigDialog::set_texts()
{
    for (const auto& [id, string] : control_texts)
        change_window_text(control(id), text(string));
    // Seen by screen readers alone: the lists have no label of their own.
    change_window_text(control(IDC_PORTS_LABEL), text(string_id::ports_label));
    change_window_text(control(IDC_LANGUAGE_LABEL), text(string_id::language_label));
    select_all_by_keyboard(control(IDC_STATUS));
    change_window_text(control(IDC_STATUS_LABEL), fmtkit::format(u"{}:"_fmt, text(string_id::status)));
}

void ConfigDialog::fill_languages()
{
    const HWND combo = control(IDC_LANGUAGE);
    languages_.emplace_back(built_in_language);
    add_combo_entry(combo, built_in_language_name, 0);
    select_combo_entry(combo, 0);
    for (const LanguagePackInfo& pack : language_packs()) {
        add_combo_entry(combo, pack.name, languages_.size());
        languages_.push_back(pack.locale);
    }
    if (const LanguagePackInfo* const current = find_pack(language_packs(), model_.settings().language))
        select_combo_entry(combo, static_cast<int>(current - language_packs().data()) + 1);
}

void ConfigDialog::fill_ports()
{
    for (const port_row& row : model_.rows_of(EnumerateSerialPorts()))
        check_list::append(control(IDC_PORTS), row.text, row.number, row.checked);
}

box ConfigDialog::layout(const control_measure& measure) const
{
    return config_dialog_layout(measure);
}

void ConfigDialog::on_laid_out()
{
    check_list::fit_column(control(IDC_PORTS));
    icons_.show(window(), IDI_PROGRAM, dpi());
}

void ConfigDialog::finish_later() noexcept
try {
    thread_.post([this] { finish(); });
} catch (...) {
    // The settings that could be read are still worth showing.
    log_error(std::current_exception());
}

void ConfigDialog::finish() noexcept
try {
    // The window may have been closed meanwhile.
    if (!window())
        return;
    for (const auto& [id, string] : control_tips)
        tips_.set(window(), control(id), text(string));
    if (update_)
        update_->start_later();
    if (!failures_.empty())
        show_load_failures();
} catch (...) {
    on_error(std::current_exception());
}

void ConfigDialog::show_load_failures()
{
    const auto line_format = fmtkit::compile(text(string_id::load_failure_line));
    std::u16string message(text(string_id::load_failures));
    for (const LoadFailure& failure : failures_) {
        message += u'\n';
        if (!failure.name.empty())
            message += fmtkit::format(line_format, failure.name, failure.text);
        else
            message += failure.code != 0 ? system_error_text(failure.code) : failure.text;
    }
    show_operation_error(window(), message);
}

bool ConfigDialog::on_command(WPARAM command, LPARAM)
{
    return route_command<ConfigDialog>(*this, commands, command);
}

bool ConfigDialog::on_notify(const NMHDR& notification, LRESULT&)
{
    if (notification.idFrom != IDC_PORTS)
        return false;
    if (notification.code == static_cast<UINT>(NM_SETFOCUS))
        check_list::begin_at_first(control(IDC_PORTS));
    if (notification.code == static_cast<UINT>(LVN_ITEMCHANGED)) {
        const auto& change = reinterpret_cast<const NMLISTVIEW&>(notification);
        if ((change.uChanged & LVIF_STATE) != 0 && check_mark_changed(change.uOldState, change.uNewState))
            on_changed();
    }
    return false;
}

bool ConfigDialog::on_message(UINT message, WPARAM wparam, LPARAM, LRESULT&)
{
    switch (message) {
    case WM_ACTIVATE:
        if (shown_ && LOWORD(wparam) != WA_INACTIVE)
            service_.refresh_unless_pending();
        return false;
    case WM_ENDSESSION:
        if (wparam)
            on_cancel();
        return true;
    case WM_TIMER:
        return update_ && update_->on_timer(wparam);
    case WM_CLOSE:
        on_cancel();
        return true;
    case WM_DESTROY:
        ::PostQuitMessage(0);
        return true;
    default:
        return false;
    }
}

void ConfigDialog::on_error(std::exception_ptr error) noexcept
{
    log_error(error);
    try {
        std::rethrow_exception(std::move(error));
    } catch (const std::exception& failure) {
        report_operation_error(window(), failure);
    }
}

void ConfigDialog::on_ok()
{
    if (ApplySettings())
        ::DestroyWindow(window());
}

void ConfigDialog::on_cancel()
{
    ::DestroyWindow(window());
}

void ConfigDialog::on_apply()
{
    ApplySettings();
}

void ConfigDialog::on_start()
{
    service_.StartServerService();
}

void ConfigDialog::on_stop()
{
    service_.StopServerService();
}

void ConfigDialog::on_share_mode_selected()
{
    on_changed();
    enable_list_by_share_mode();
}

void ConfigDialog::on_changed()
{
    model_.touch();
    show_dirty();
}

void ConfigDialog::on_security()
{
    std::u16string edited = edit_access(window(), model_.descriptor(), access_editor_);
    // The window may have been closed under the editor.
    if (edited.empty() || !window())
        return;
    model_.change_descriptor(std::move(edited));
    show_dirty();
    show_who_can_connect();
    lay_out(dpi());
}

void ConfigDialog::on_about()
{
    AboutDialog(update_ ? update_->announcements() : std::u16string()).show(window());
}

void ConfigDialog::on_language_selected()
{
    const std::ptrdiff_t selected = selected_combo_index(control(IDC_LANGUAGE));
    if (selected < 0 || !model_.choose_language(languages_[static_cast<std::size_t>(selected)]))
        return;
    show_dirty();
    if (!offer_restart())
        return;
    restart_.set();
    bool saved = false;
    try {
        saved = ApplySettings();
    } catch (...) {
        restart_.clear();
        throw;
    }
    if (!saved) {
        restart_.clear();
    } else if (!::PostMessageW(window(), WM_CLOSE, 0, 0)) {
        const DWORD code = ::GetLastError();
        restart_.clear();
        girder::throw_win32(code, "PostMessageW");
    }
}

bool ConfigDialog::offer_restart()
{
    const std::u16string question =
        fmtkit::format(fmtkit::compile(text(string_id::restart_question)), text(string_id::product_name));
    return ask_yes_no(window(), text(string_id::product_name), question, message_icon::question);
}

bool ConfigDialog::ApplySettings()
{
    if (!model_.dirty())
        return true;
    const std::optional<ServerSettings> next = confirmed_settings();
    if (!next)
        return false;
    model_.accept(*next);
    show_dirty();
    SaveSettings(model_.settings());
    return true;
}

std::optional<ServerSettings> ConfigDialog::confirmed_settings()
{
    for (;;) {
        ServerSettings next = model_.collect(read_controls());
        if (!confirm(model_.confirmations_for(next)))
            return std::nullopt;
        // While a question waits for its answer, another program can still change a control.
        if (model_.collect(read_controls()) == next)
            return next;
    }
}

bool ConfigDialog::confirm(const save_confirmations& needed)
{
    const auto ask = [this](std::uint32_t question, const std::u16string& names) {
        return ask_yes_no(window(), text(string_id::product_name),
                          fmtkit::format(fmtkit::compile(text(question)), names), message_icon::warning);
    };
    if (!needed.replaced_values.empty() &&
        !ask(string_id::replace_unread_settings,
             joined(needed.replaced_values, [](const std::u16string& name) { return name; })))
        return false;
    return needed.dropped_ports.empty() ||
           ask(needed.shares_every_port ? string_id::drop_absent_ports_and_share_all : string_id::drop_absent_ports,
               joined(needed.dropped_ports, [](std::uint32_t port) { return fmtkit::format(u"COM{}"_fmt, port); }));
}

std::optional<share_mode> ConfigDialog::checked_share_mode() const
{
    for (const auto& [id, mode] : share_buttons)
        if (is_checked_button(control(id)))
            return mode;
    return std::nullopt;
}

control_state ConfigDialog::read_controls() const
{
    control_state state{.auto_discovery = is_checked_button(control(IDC_AUTO_DISCOVERY)),
                        .share = checked_share_mode(),
                        .checked_ports = {}};
    const HWND list = control(IDC_PORTS);
    for (int i = 0; i < check_list::count(list); ++i)
        if (is_checked(check_list::state_image(list, i)))
            state.checked_ports.push_back(check_list::parameter(list, i));
    return state;
}

void ConfigDialog::enable_list_by_share_mode()
{
    set_enabled(control(IDC_PORTS), checked_share_mode() == share_mode::listed_ports);
}

void ConfigDialog::show_dirty()
{
    // Apply is the last tab stop: its focus would go on to the status at the top.
    if (!model_.dirty() && ::GetFocus() == control(IDC_APPLY))
        ::SendMessageW(window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control(IDOK)), TRUE);
    set_enabled(control(IDC_APPLY), model_.dirty());
}

void ConfigDialog::show_who_can_connect()
{
    set_window_text(control(IDC_ACCESS_WORDS), access_words(model_.descriptor()));
}

} // namespace tidelink
