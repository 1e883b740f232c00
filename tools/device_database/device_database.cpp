#include "device_database/device_database.h"

#include "base/handles.h"
#include "base/wide.h"
#include "base/win32_error.h"

#include <initializer_list>
#include <string_view>

namespace device_database {
namespace {

using girder::as_wide;

constexpr std::u16string_view interface_class = u"{86e0d1e0-8089-11d0-9ce4-08003e301f73}";
constexpr std::u16string_view enumerator = u"TIDELINK";
constexpr std::u16string_view model = u"PORT";

std::u16string joined(std::initializer_list<std::u16string_view> parts)
{
    std::u16string text;
    for (const std::u16string_view part : parts)
        text += part;
    return text;
}

std::u16string device_key(std::u16string_view device)
{
    return joined({u"System\\CurrentControlSet\\Enum\\", enumerator, u"\\", model, u"\\", device});
}

std::u16string interface_name(std::u16string_view device)
{
    return joined({u"?#", enumerator, u"#", model, u"#", device, u"#", interface_class});
}

std::u16string interface_key(std::u16string_view device)
{
    return joined(
        {u"System\\CurrentControlSet\\Control\\DeviceClasses\\", interface_class, u"\\##", interface_name(device)});
}

girder::unique_registry_key create_key(const std::u16string& path)
{
    girder::unique_registry_key key;
    const LSTATUS status =
        ::RegCreateKeyExW(HKEY_LOCAL_MACHINE, as_wide(path), 0, nullptr, 0, KEY_WRITE, nullptr, key.put(), nullptr);
    if (status != ERROR_SUCCESS)
        girder::throw_win32(static_cast<DWORD>(status), "RegCreateKeyExW");
    return key;
}

void set_value(const girder::unique_registry_key& key, const wchar_t* name, const registry_value& value)
{
    const LSTATUS status =
        ::RegSetValueExW(key.get(), name, 0, value.type, reinterpret_cast<const BYTE*>(value.data.data()),
                         static_cast<DWORD>(value.data.size()));
    if (status != ERROR_SUCCESS)
        girder::throw_win32(static_cast<DWORD>(status), "RegSetValueExW");
}

registry_value as_value(const std::u16string& text)
{
    return {.type = REG_SZ, .data = std::as_bytes(std::span(text.c_str(), text.size() + 1))};
}

} // namespace

void add_port_device(const std::u16string& device, const std::optional<registry_value>& port_name,
                     const std::optional<std::u16string>& friendly_name)
{
    remove_port_device(device);

    const girder::unique_registry_key hardware = create_key(device_key(device));
    set_value(hardware, L"ClassGUID", as_value(u"{4d36e978-e325-11ce-bfc1-08002be10318}"));
    set_value(hardware, L"Class", as_value(u"Ports"));
    if (friendly_name)
        set_value(hardware, L"FriendlyName", as_value(*friendly_name));

    const girder::unique_registry_key parameters = create_key(device_key(device) + u"\\Device Parameters");
    if (port_name)
        set_value(parameters, L"PortName", *port_name);

    const girder::unique_registry_key by_class = create_key(interface_key(device));
    set_value(by_class, L"DeviceInstance", as_value(joined({enumerator, u"\\", model, u"\\", device})));
    const girder::unique_registry_key link = create_key(interface_key(device) + u"\\#");
    set_value(link, L"SymbolicLink", as_value(joined({u"\\\\", interface_name(device)})));
    const girder::unique_registry_key control = create_key(interface_key(device) + u"\\#\\Control");
    const DWORD linked = 1;
    set_value(control, L"Linked", {.type = REG_DWORD, .data = std::as_bytes(std::span(&linked, 1))});
}

void add_port(const std::u16string& port, const std::u16string& friendly_name)
{
    add_port_device(port, as_value(port), friendly_name);
}

void remove_port_device(const std::u16string& device)
{
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, as_wide(interface_key(device)));
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, as_wide(device_key(device)));
}

void remove_port_devices()
{
    const std::u16string devices = joined({u"System\\CurrentControlSet\\Enum\\", enumerator, u"\\", model});
    girder::unique_registry_key key;
    if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, as_wide(devices), 0, KEY_READ, key.put()) != ERROR_SUCCESS)
        return;
    wchar_t name[MAX_PATH];
    DWORD length = MAX_PATH;
    while (::RegEnumKeyExW(key.get(), 0, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS) {
        remove_port_device(std::u16string(girder::as_utf16(name), length));
        length = MAX_PATH;
    }
}

} // namespace device_database
