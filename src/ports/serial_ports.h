#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tidelink {

/// A serial port that is present on this machine.
struct SerialPortInfo {
    std::u16string friendlyName;  ///< the device's name for people; empty when it has none
    std::uint32_t portNumber = 0; ///< 3 for COM3; never 0
};

/// The serial ports that are present now, by number; two devices with one number give two records. Asks the device
/// database (SetupDi functions) and opens no port. Never fails: what cannot be read is left out, or listed without its
/// name. Windows only.
std::vector<SerialPortInfo> EnumerateSerialPorts();

} // namespace tidelink
