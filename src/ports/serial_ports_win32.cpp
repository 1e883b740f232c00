#include "base/handles.h"
#include "base/wide.h"
#include "ports/port_number.h"
#include "ports/serial_ports.h"

#include <windows.h>

#include <setupapi.h>

#include <algorithm>
#include <array>

namespace tidelink {
namespace {

/// GUID_DEVINTERFACE_COMPORT: what every driver of a COM port registers for its device.
constexpr GUID com_port_interface = {0x86E0D1E0, 0x8089, 0x11D0, {0x9C, 0xE4, 0x08, 0x00, 0x3E, 0x30, 0x1F, 0x73}};

struct device_list_traits {
    using raw_type = HDEVINFO;
    static raw_type empty() noexcept { return INVALID_HANDLE_VALUE; }
    static void close(raw_type list) noexcept { ::SetupDiDestroyDeviceInfoList(list); }
};
using unique_device_list = girder::unique_handle<device_list_traits>;

std::uint32_t number_of(HDEVINFO devices, SP_DEVINFO_DATA& device)
{
    const HKEY raw = ::SetupDiOpenDevRegKey(devices, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ);
    if (raw == INVALID_HANDLE_VALUE)
        return 0;
    const girder::unique_registry_key key(raw);

    std::array<std::byte, MAX_PATH * sizeof(wchar_t)> name;
    DWORD type = REG_NONE;
    DWORD size = name.size();
    if (::RegQueryValueExW(key.get(), L"PortName", nullptr, &type, reinterpret_cast<BYTE*>(name.data()), &size) !=
        ERROR_SUCCESS)
        return 0;
    return port_number(type, std::span(name).first(size));
}

std::u16string friendly_name_of(HDEVINFO devices, SP_DEVINFO_DATA& device)
{
    DWORD size = 0;
    ::SetupDiGetDeviceRegistryPropertyW(devices, &device, SPDRP_FRIENDLYNAME, nullptr, nullptr, 0, &size);
    if (size < sizeof(wchar_t))
        return {};
    std::u16string name((size + 1) / sizeof(wchar_t), u'\0');
    if (!::SetupDiGetDeviceRegistryPropertyW(devices, &device, SPDRP_FRIENDLYNAME, nullptr,
                                             reinterpret_cast<BYTE*>(name.data()), size, nullptr))
        return {};
    name.resize(size / sizeof(wchar_t) - 1);
    return name;
}

} // namespace

std::vector<SerialPortInfo> EnumerateSerialPorts()
{
    std::vector<SerialPortInfo> ports;
    const unique_device_list devices(::SetupDiGetClassDevsExW(
        &com_port_interface, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE, nullptr, nullptr, nullptr));
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    for (DWORD index = 0; ::SetupDiEnumDeviceInfo(devices.get(), index, &device); ++index)
        if (const std::uint32_t number = number_of(devices.get(), device))
            ports.push_back({.friendlyName = friendly_name_of(devices.get(), device), .portNumber = number});
    std::ranges::sort(ports, {}, &SerialPortInfo::portNumber);
    return ports;
}

} // namespace tidelink
