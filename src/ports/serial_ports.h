#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tidelink {

/// A serial (COM) port of this machine.
struct SerialPortInfo {
    std::u16string friendlyName;  ///< e.g. "USB Serial Port (COM3)"; empty when the device has none
    std::uint32_t portNumber = 0; ///< 3 for COM3; never 0 in a list

    bool operator==(const SerialPortInfo&) const = default;
};

/// The ports that are present now, in ascending order of their numbers, as the device-installation database lists them
/// (SetupDi functions, COM-port device interface class). No port is opened. Two devices of one number are both listed.
///
/// Never fails: a device whose number cannot be read is left out, and where the database cannot be read the list is
/// empty. Windows only.
std::vector<SerialPortInfo> EnumerateSerialPorts();

} // namespace tidelink
