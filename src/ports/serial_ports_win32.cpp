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

/// GUID_DEVINTERFACE_COMPORT.
constexpr GUID com_port_interface{0x86E0D1E0, 0x8089, 0x11D0, {0x9C, 0xE4, 0x08, 0x00, 0x3E, 0x30, 0x1F, 0x73}};

struct device_list_traits {
    using raw_type = HDEVINFO;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type list) noexcept { ::SetupDiDestroyDeviceInfoList(list); }
};
using unique_device_list = girder::unique_handle<device_list_traits>;

girder::unique_registry_key open_hardware_key(HDEVINFO list, SP_DEVINFO_DATA& device)
{
    const HKEY key = ::SetupDiOpenDevRegKey(list, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ);
    return girder::unique_registry_key{key == INVALID_HANDLE_VALUE ? nullptr : key};
}

std::uint32_t number_of(HDEVINFO list, SP_DEVINFO_DATA& device)
{
    const girder::unique_registry_key key = open_hardware_key(list, device);
    if (!key)
        return 0;
    std::array<std::byte, 520> value{};
    auto size = static_cast<DWORD>(value.size());
    DWORD type = REG_NONE;
    if (::RegQueryValueExW(key.get(), L"PortName", nullptr, &type, reinterpret_cast<BYTE*>(value.data()), &size) !=
        ERROR_SUCCESS)
        return 0;
    return port_number(type, std::span(value).first(size));
}

std::u16string friendly_name_of(HDEVINFO list, SP_DEVINFO_DATA& device)
{
    DWORD size = 0;
    ::SetupDiGetDeviceRegistryPropertyW(list, &device, SPDRP_FRIENDLYNAME, nullptr, nullptr, 0, &size);
    if (size < sizeof(char16_t))
        return {};
    std::u16string name(size / sizeof(char16_t), u'\0');
    if (!::SetupDiGetDeviceRegistryPropertyW(list, &device, SPDRP_FRIENDLYNAME, nullptr,
                                             reinterpret_cast<BYTE*>(name.data()), size, nullptr))
        return {};
    name.pop_back();
    return name;
}

} // namespace

std::vector<SerialPortInfo> EnumerateSerialPorts()
{
    std::vector<SerialPortInfo> ports;
    const unique_device_list list{::SetupDiGetClassDevsExW(
        &com_port_interface, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE, nullptr, nullptr, nullptr)};
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    for (DWORD index = 0; ::SetupDiEnumDeviceInfo(list.get(), index, &device); ++index) {
        if (const std::uint32_t number = number_of(list.get(), device))
            ports.push_back({.friendlyName = friendly_name_of(list.get(), device), .portNumber = number});
    }
    std::ranges::sort(ports, {}, &SerialPortInfo::portNumber);
    return ports;
}

} // namespace tidelink
