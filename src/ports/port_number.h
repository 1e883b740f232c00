#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tidelink {

/// The number of a serial port from the "PortName" value of its device, 3 for "COM3". The first three characters are
/// not looked at; the decimal digits after them count, up to the first other character, in 32-bit arithmetic that
/// wraps.
///
/// \param type  registry type of the value; REG_SZ (1) and REG_EXPAND_SZ (2) hold a name
/// \param data  the value as stored: UTF-16, little-endian. Without a final NUL, or of odd size, it is rejected, not
///              repaired: device drivers write this value, and a cut name would be the name of another port
/// \return 0 when the value names no port
std::uint32_t port_number(std::uint32_t type, std::span<const std::byte> data) noexcept;

} // namespace tidelink
