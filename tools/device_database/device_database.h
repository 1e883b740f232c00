#pragma once

#include <windows.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>

// Made-up COM-port devices in the device-installation database of a Wine prefix. The records are written straight into
// the registry (System\CurrentControlSet, Enum and Control\DeviceClasses): Wine's own functions cannot mark a device
// as present, and Windows lets nobody but its plug-and-play manager write there.

namespace device_database {

struct registry_value {
    DWORD type = REG_SZ;
    std::span<const std::byte> data; ///< as it is stored
};

/// Adds a present device of the COM-port interface class, or replaces the one of that name.
/// \param device         distinguishes made-up devices from each other; no backslash
/// \param port_name      the "PortName" value of its hardware key; left out when empty
/// \param friendly_name  left out when empty
/// \throws girder::system_error
void add_port_device(const std::u16string& device, const std::optional<registry_value>& port_name,
                     const std::optional<std::u16string>& friendly_name);

/// A device as a driver registers it: named after its port, e.g. u"COM3".
/// \throws girder::system_error
void add_port(const std::u16string& port, const std::u16string& friendly_name);

/// Takes the device out of the database, as if it were unplugged and forgotten; nothing happens where it is unknown.
void remove_port_device(const std::u16string& device);

/// Removes every device that this library added to the prefix.
void remove_port_devices();

} // namespace device_database
