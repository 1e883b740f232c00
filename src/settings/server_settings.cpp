#include "settings/server_settings.h"

namespace tidelink {

ServerSettings DefaultServerSettings()
{
    ServerSettings settings;
    girder::nsm::assign_defaults(server_settings_fields, settings);
    return settings;
}

void WriteAll(const ServerSettings& settings, girder::nsm::value_writer& writer)
{
    girder::nsm::write_all(server_settings_fields, settings, writer);
}

void WriteChanged(const ServerSettings& settings, const ServerSettings& defaults, girder::nsm::value_writer& writer)
{
    girder::nsm::write_changed(server_settings_fields, settings, defaults, writer);
}

void Read(const girder::nsm::value_reader& source, ServerSettings& settings)
{
    girder::nsm::read_record(server_settings_fields, source, settings);
}

void ReadTolerantly(const girder::nsm::value_reader& source, ServerSettings& settings,
                    const girder::nsm::field_failure& on_failure)
{
    girder::nsm::read_record(server_settings_fields, source, settings, on_failure);
}

} // namespace tidelink
