#include "app/config_model.h"

#include "base/utf.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace tidelink {
namespace {

bool contains(const std::vector<std::uint32_t>& numbers, std::uint32_t number)
{
    return std::ranges::find(numbers, number) != numbers.end();
}

std::vector<std::u16string> names_of_every_value()
{
    std::vector<std::u16string> names;
    names.reserve(server_settings_fields.names.size());
    for (const std::string_view name : server_settings_fields.names)
        names.push_back(girder::to_utf16(name));
    return names;
}

std::vector<std::u16string> unreadable_values(const std::vector<LoadFailure>& failures)
{
    std::vector<std::u16string> names;
    for (const LoadFailure& failure : failures) {
        if (failure.name.empty())
            return names_of_every_value();
        names.push_back(failure.name);
    }
    return names;
}

} // namespace

config_model::config_model(LoadedSettings loaded)
    : settings_(std::move(loaded.settings)), descriptor_(settings_.securityDescriptor),
      unreadable_(unreadable_values(loaded.failures))
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

void config_model::change_descriptor(std::u16string descriptor)
{
    descriptor_ = std::move(descriptor);
    dirty_ = true;
}

ServerSettings config_model::collect(const control_state& controls) const
{
    ServerSettings next = settings_;
    next.autoDiscovery = controls.auto_discovery;
    next.sharedPorts = controls.share ? controls.checked_ports : std::vector<std::uint32_t>{};
    next.securityDescriptor = descriptor_;
    return next;
}

save_confirmations config_model::confirmations_for(const ServerSettings& next) const
{
    save_confirmations needed{
        .replaced_values = unreadable_, .dropped_ports = {}, .shares_every_port = next.sharedPorts.empty()};
    for (const std::uint32_t number : settings_.sharedPorts)
        if (!contains(present_, number) && !contains(next.sharedPorts, number) &&
            !contains(needed.dropped_ports, number))
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
