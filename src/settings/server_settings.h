#pragma once

#include "serialisation/record.h"
#include "serialisation/visitor.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace tidelink {

/// The settings that this utility shares with the server.
struct ServerSettings {
    std::u16string securityDescriptor;      ///< who may use the server, as an SDDL string
    bool autoDiscovery = false;             ///< the server answers discovery on the network
    std::vector<std::uint32_t> sharedPorts; ///< numbers of the shared ports in the list's order; empty: all ports
    std::u16string language;                ///< locale of the user interface; empty: chosen automatically

    bool operator==(const ServerSettings&) const = default;
};

/// The fields: serialised name, member and default. A missing value means its default.
inline constexpr girder::nsm::field_table server_settings_fields{
    girder::nsm::field{.name = "securityDescriptor",
                       .member = &ServerSettings::securityDescriptor,
                       .default_value = std::u16string_view(u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)")},
    girder::nsm::field{.name = "autoDiscovery", .member = &ServerSettings::autoDiscovery, .default_value = true},
    girder::nsm::field{.name = "sharedPorts",
                       .member = &ServerSettings::sharedPorts,
                       .default_value = std::initializer_list<std::uint32_t>{}},
    girder::nsm::field{.name = "language", .member = &ServerSettings::language, .default_value = std::u16string_view()},
};

ServerSettings DefaultServerSettings();

/// Writes the four fields in declaration order.
void WriteAll(const ServerSettings& settings, girder::nsm::value_writer& writer);

/// Writes the fields that differ from those of `defaults`, in declaration order.
void WriteChanged(const ServerSettings& settings, const ServerSettings& defaults, girder::nsm::value_writer& writer);

/// Reads the fields that `source` has into `settings`; the others keep their values, unknown names are ignored.
/// \throws girder::nsm::details::load_exception: "Object expected", "String expected", "Boolean expected", ...; what
///         was read before stays
void Read(const girder::nsm::value_reader& source, ServerSettings& settings);

/// The same field by field: one that cannot be read keeps its value and is reported, and the others are read.
/// \throws girder::nsm::details::load_exception "Object expected"
void ReadTolerantly(const girder::nsm::value_reader& source, ServerSettings& settings,
                    const girder::nsm::field_failure& on_failure);

} // namespace tidelink
