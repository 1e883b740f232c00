#pragma once

#include "ports/serial_ports.h"
#include "settings/server_settings.h"
#include "settings/settings_store.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tidelink {

/// The two ways to share, in the order of their radio buttons.
enum class share_mode : std::uint8_t { all_ports, listed_ports };

/// One row of the port list.
struct port_row {
    std::u16string text;
    std::uint32_t number = 0;
    bool checked = false;
};

/// What the dialog's controls say when the settings are applied.
struct control_state {
    bool auto_discovery = true;
    std::optional<share_mode> share;          ///< empty when neither radio button is checked
    std::vector<std::uint32_t> checked_ports; ///< in the order of the list
};

/// What has to be confirmed before the next save may happen. Empty lists need no question.
struct save_confirmations {
    std::vector<std::u16string> replaced_values; ///< stored values that could not be read and would be overwritten
    std::vector<std::uint32_t> dropped_ports;    ///< stored numbers of ports that are not present now, each once
    bool shares_every_port = false;              ///< no port is left to be listed, which shares all of them
};

/// The state behind the main dialog and its rules, without a window: the settings under edit, what was stored, what is
/// present, and whether there is something to apply.
class config_model {
public:
    /// Takes the settings as they were loaded. Where the whole key could not be read, every value counts as one that
    /// could not.
    explicit config_model(LoadedSettings loaded);

    /// Takes the ports that are present now, sorted by number. A port is checked when it is shared, and every port is
    /// checked when all are shared.
    std::vector<port_row> rows_of(const std::vector<SerialPortInfo>& present);

    share_mode initial_share_mode() const noexcept;
    const ServerSettings& settings() const noexcept { return settings_; }

    bool dirty() const noexcept { return dirty_; }
    void touch() noexcept { dirty_ = true; }
    void clear_dirty() noexcept { dirty_ = false; }

    /// Takes over the language that is shown, which was chosen where none is stored. That alone is nothing to apply.
    void adopt_language(std::u16string language) { settings_.language = std::move(language); }

    /// Makes `language` the one to store. \return false when it is the current one: nothing has changed
    bool choose_language(std::u16string_view language);

    /// The access list under edit, as an SDDL string; at first the stored one.
    const std::u16string& descriptor() const noexcept { return descriptor_; }
    void change_descriptor(std::u16string descriptor);

    /// The record that applying `controls` would store. The checked ports are shared whichever radio button is checked;
    /// none is listed only when neither is. An empty list means that all ports are shared.
    ServerSettings collect(const control_state& controls) const;

    /// What the administrator has to agree to before `next` is stored.
    save_confirmations confirmations_for(const ServerSettings& next) const;

    /// Makes `next` the settings under edit, with nothing left to apply or to confirm. To be called just before the
    /// save: a save that fails leaves nothing to apply.
    void accept(ServerSettings next);

private:
    ServerSettings settings_;
    std::u16string descriptor_;
    std::vector<std::u16string> unreadable_;
    std::vector<std::uint32_t> present_;
    bool dirty_ = false;
};

/// Whether a list item counts as checked. \param state_image_index  bits 12 to 15 of the item's state, shifted down
constexpr bool is_checked(unsigned state_image_index) noexcept
{
    return state_image_index != 1;
}

/// Whether a change of a list item's state bits is a change of its check mark, as opposed to its selection or focus.
constexpr bool check_mark_changed(unsigned old_state, unsigned new_state) noexcept
{
    constexpr unsigned state_image_mask = 0xF000;
    return (old_state & state_image_mask) != (new_state & state_image_mask) && new_state > 0x0FFF;
}

} // namespace tidelink
