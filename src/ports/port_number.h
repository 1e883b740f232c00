#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tidelink {

/// The number of a serial port from its stored "PortName" value, e.g. 3 for COM3. The first three characters are
/// skipped unseen, decimal digits follow up to the first other character; the number wraps at 2^32.
///
/// \param type  registry type of the value; only REG_SZ (1) and REG_EXPAND_SZ (2) are texts
/// \param data  the value as stored: little-endian UTF-16 with its terminating null
/// \return 0 when the value names no port: another type, no digits, an odd size, or no terminating null
std::uint32_t port_number(std::uint32_t type, std::span<const std::byte> data) noexcept;

} // namespace tidelink
