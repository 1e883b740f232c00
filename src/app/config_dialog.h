#pragma once

#include "app/config_model.h"
#include "app/restart_request.h"
#include "app/service_commands.h"
#include "app/update_offer.h"
#include "async/ui_thread.h"
#include "security/edit_security.h"
#include "settings/settings_store.h"
#include "ui/dialog.h"
#include "ui/icons.h"
#include "ui/tooltips.h"

#include <windows.h>

#include <commctrl.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tidelink {

/// The program's only top-level window, the modeless dialog 129: shows the server's state, edits the settings that it
/// shares with the server, and writes them back. Destroying the window ends the message loop. Lives on the
/// user-interface thread.
class ConfigDialog : public girder::ui::dialog {
public:
    /// Loads the settings and then the string tables; creates no window.
    /// \param thread   runs what has to wait until the window is shown; outlives the dialog
    /// \param restart  set when the administrator asks for a restart; outlives the dialog
    ConfigDialog(girder::ui_thread& thread, restart_request& restart);

    /// Creates the window, hidden and filled.
    /// \throws girder::system_error
    void create();
    /// Shows the created window; its status is that of create().
    /// \param command  of ShowWindow, such as SW_SHOW
    void show(int command) noexcept;

    /// Puts another editor behind the Security button, in the place of the system's.
    void use_access_editor(access_editor editor) { access_editor_ = std::move(editor); }

    /// Has the dialog look for a newer release once it is shown.
    void look_for_updates(update_offer::settings settings);

protected:
    bool on_initialise() override;
    bool on_command(WPARAM command, LPARAM sender) override;
    bool on_notify(const NMHDR& notification, LRESULT& result) override;
    bool on_message(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) override;
    girder::ui::box layout(const girder::ui::control_measure& measure) const override;
    void on_laid_out() override;
    void on_error(std::exception_ptr error) noexcept override;

private:
    static const girder::ui::command_route<ConfigDialog> commands[];

    ConfigDialog(girder::ui_thread& thread, restart_request& restart, LoadedSettings loaded);

    void set_texts();
    void fill_languages();
    void fill_ports();
    /// What the window can be seen without comes when it is seen.
    void finish_later() noexcept;
    void finish() noexcept;
    void show_load_failures();

    void on_ok();
    void on_cancel();
    void on_apply();
    void on_share_mode_selected();
    void on_changed();
    void on_about();
    void on_security();
    void on_language_selected();
    void on_start();
    void on_stop();

    /// Writes the settings when something has changed. \return false when the administrator declined a question that
    /// comes first: nothing was written and the change is still to be applied
    bool ApplySettings();
    /// What the controls say, once every question about it was answered with Yes; empty when one was not.
    std::optional<ServerSettings> confirmed_settings();
    bool confirm(const save_confirmations& needed);
    bool offer_restart();

    std::optional<share_mode> checked_share_mode() const;
    control_state read_controls() const;
    void enable_list_by_share_mode();
    void show_dirty();
    void show_who_can_connect();

    girder::ui_thread& thread_;
    restart_request& restart_;
    girder::ui::window_icons icons_;
    girder::ui::tooltips tips_;
    service_commands service_{thread_, *this};
    std::vector<LoadFailure> failures_;
    config_model model_;
    access_editor access_editor_ = run_system_access_editor;
    std::optional<update_offer> update_;
    bool shown_ = false;
    std::vector<std::u16string> languages_; ///< locales, in the order of the combo box
};

} // namespace tidelink
