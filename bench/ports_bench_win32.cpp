#include "base/wide.h"
#include "device_database/device_database.h"
#include "harness.h"
#include "ports/serial_ports.h"

#include <windows.h>

#include <setupapi.h>

#include <algorithm>
#include <array>
#include <cwchar>
#include <span>
#include <string>
#include <vector>

// Listing 64 ports, beside the same calls of the system with fixed buffers and a number taken by wcstoul.

namespace {

constexpr std::size_t port_count = 64;
constexpr GUID com_port_interface = {0x86E0D1E0, 0x8089, 0x11D0, {0x9C, 0xE4, 0x08, 0x00, 0x3E, 0x30, 0x1F, 0x73}};

struct plain_port {
    unsigned long number = 0;
    std::array<wchar_t, 256> name{};
};

std::vector<tidelink::SerialPortInfo> expected;
std::vector<tidelink::SerialPortInfo> listed;
std::array<plain_port, port_count> plainly_listed;
std::size_t plain_count = 0;

void list()
{
    listed = tidelink::EnumerateSerialPorts();
}

void list_plainly()
{
    plain_count = 0;
    HDEVINFO devices =
        ::SetupDiGetClassDevsW(&com_port_interface, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    for (DWORD i = 0; plain_count < port_count && ::SetupDiEnumDeviceInfo(devices, i, &device); ++i) {
        HKEY key = ::SetupDiOpenDevRegKey(devices, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_READ);
        std::array<wchar_t, 64> port{};
        DWORD size = sizeof port - sizeof(wchar_t);
        ::RegQueryValueExW(key, L"PortName", nullptr, nullptr, reinterpret_cast<BYTE*>(port.data()), &size);
        ::RegCloseKey(key);
        plain_port& found = plainly_listed[plain_count++];
        found.number = std::wcstoul(port.data() + 3, nullptr, 10);
        ::SetupDiGetDeviceRegistryPropertyW(devices, &device, SPDRP_FRIENDLYNAME, nullptr,
                                            reinterpret_cast<BYTE*>(found.name.data()), sizeof found.name, nullptr);
    }
    ::SetupDiDestroyDeviceInfoList(devices);
    std::sort(plainly_listed.begin(), plainly_listed.begin() + static_cast<std::ptrdiff_t>(plain_count),
              [](const plain_port& a, const plain_port& b) { return a.number < b.number; });
}

void fill_device_database(bench::random_source& random)
{
    device_database::remove_port_devices();
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < port_count; ++i) {
        number += 1 + static_cast<std::uint32_t>(random() % 3);
        const std::string digits = std::to_string(number);
        const std::u16string port = u"COM" + std::u16string(digits.begin(), digits.end());
        const std::u16string name = u"USB Serial Port (" + port + u")";
        device_database::add_port(port, name);
        expected.push_back({.friendlyName = name, .portNumber = number});
    }
}

bool listed_as_expected()
{
    return std::ranges::equal(listed, expected, [](const auto& one, const auto& other) {
        return one.portNumber == other.portNumber && one.friendlyName == other.friendlyName;
    });
}

bool plainly_listed_as_expected()
{
    return std::ranges::equal(std::span(plainly_listed).first(plain_count), expected,
                              [](const plain_port& one, const tidelink::SerialPortInfo& other) {
                                  return one.number == other.portNumber &&
                                         girder::as_utf16(one.name.data()) == other.friendlyName;
                              });
}

} // namespace

int main()
{
    bench::random_source random{std::random_device{}()};
    fill_device_database(random);
    bench::report report("Ports");
    report.compare({.work = "list 64 ports",
                    .goal = 0,
                    .subject = {.name = "EnumerateSerialPorts",
                                .run = list,
                                .is_right = [] { return list(), listed_as_expected(); }},
                    .peers = {{.name = "the system's calls, fixed buffers",
                               .run = list_plainly,
                               .is_right = [] { return list_plainly(), plainly_listed_as_expected(); }}},
                    .draw = [](bench::random_source&) {},
                    .checked_draws = 3,
                    .rounds = 101});
    device_database::remove_port_devices();
    return report.exit_code();
}
