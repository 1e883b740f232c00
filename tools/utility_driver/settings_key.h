#pragma once

#include <windows.h>

#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

// The key that the utility shares with the server, looked at with plain registry calls.

namespace utility_driver {

struct stored_value {
    DWORD type = REG_NONE;
    std::vector<std::uint8_t> data;

    bool operator==(const stored_value&) const = default;
};

stored_value binary(std::initializer_list<std::uint8_t> data);
stored_value number(std::uint32_t value);
stored_value text(const std::u16string& value);
/// The "sharedPorts" value for these port numbers.
stored_value ports(std::initializer_list<std::uint32_t> numbers);

using stored_values = std::map<std::u16string, stored_value>;

namespace settings_key {

/// Removes the key and what is beside it.
void remove();
/// Removes the key and keeps it from being created until remove() is called.
void block();
/// Creates the key when it is missing.
void write(const std::u16string& name, const stored_value& value);
/// Every value below the key, none when it is missing. A subkey appears with its name and a backslash.
stored_values read();

} // namespace settings_key
} // namespace utility_driver
