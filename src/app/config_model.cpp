#include "app/config_model.h"

#include <algorithm>
#include <utility>

namespace tidelink {
namespace {

bool contains(const std::vector<std::uint32_t>& numbers, std::uint32_t number)
{
    return std::ranges::find(numbers, number) != numbers.end();
}

} // namespace

config_model::config_model(ServerSettings stored, std::vector<std::u16string> unreadable)
    : settings_(std::move(stored)), unreadable_(std::move(unreadable))
{}

std::vector<port_row> config_model::rows_of(const std::vector<SerialPortInfo>& present)
{
    std::vector<port_row> rows;
    rows.reserve(present.size());
    present_.clear();
    for (const SerialPortInfo& port : present) {
        const bool shared = settings_.sharedPorts.empty() || contains(settings_.sharedPorts, port.portNumber);
        rows.push_back({.text = port.friendlyName, .number = port.portNumber, .checked = shared});
        present_.push_back(port.portNumber);
    }
    return rows;
}

share_mode config_model::initial_share_mode() const noexcept
{
    return settings_.sharedPorts.empty() ? share_mode::all_ports : share_mode::listed_ports;
}

bool config_model::choose_language(std::u16string_view language)
{
    if (settings_.language == language)
        return false;
    settings_.language = language;
    dirty_ = true;
    return true;
}

ServerSettings config_model::collect(const control_state& controls) const
{
    ServerSettings next = settings_;
    next.autoDiscovery = controls.auto_discovery;
    next.sharedPorts = controls.share ? controls.checked_ports : std::vector<std::uint32_t>{};
    return next;
}

save_confirmations config_model::confirmations_for(const ServerSettings& next) const
{
    save_confirmations needed{.replaced_values = unreadable_, .dropped_ports = {}};
    for (const std::uint32_t number : settings_.sharedPorts)
        if (!contains(present_, number) && !contains(next.sharedPorts, number))
            needed.dropped_ports.push_back(number);
    return needed;
}

void config_model::accept(ServerSettings next)
{
    settings_ = std::move(next);
    unreadable_.clear();
    dirty_ = false;
}

} // namespace tidelink
