#include "device_database/device_database.h"
#include "ports/serial_ports.h"

#include <gmock/gmock.h>

#include <string_view>

namespace {

using namespace std::literals;
using testing::ElementsAre;
using tidelink::EnumerateSerialPorts;
using tidelink::SerialPortInfo;

device_database::registry_value stored(std::u16string_view characters, DWORD type = REG_SZ)
{
    return {.type = type, .data = std::as_bytes(std::span(characters))};
}

class serial_ports_test : public testing::Test {
protected:
    void SetUp() override { device_database::remove_port_devices(); }
    void TearDown() override { device_database::remove_port_devices(); }
};

TEST_F(serial_ports_test, two_devices_of_one_number_are_both_listed)
{
    device_database::add_port_device(u"left", stored(u"COM4\0"sv), u"Port");
    device_database::add_port_device(u"right", stored(u"COM4\0"sv), u"Port");
    EXPECT_THAT(EnumerateSerialPorts(), ElementsAre(SerialPortInfo{u"Port", 4}, SerialPortInfo{u"Port", 4}));
}

TEST_F(serial_ports_test, a_missing_or_empty_friendly_name_is_an_empty_one)
{
    device_database::add_port_device(u"COM5", stored(u"COM5\0"sv, REG_EXPAND_SZ), std::nullopt);
    device_database::add_port_device(u"COM6", stored(u"COM6\0"sv), u"");
    device_database::add_port_device(u"COM7", stored(u"COM7\0"sv), u"Schnittstelle \u00fc \U0001F50C");
    EXPECT_THAT(EnumerateSerialPorts(), ElementsAre(SerialPortInfo{u"", 5}, SerialPortInfo{u"", 6},
                                                    SerialPortInfo{u"Schnittstelle \u00fc \U0001F50C", 7}));
}

TEST_F(serial_ports_test, a_device_whose_number_cannot_be_read_is_left_out)
{
    const std::u16string longest = u"COM8" + std::u16string(256, u'\0');
    const std::u16string too_long = u"COM9" + std::u16string(257, u'\0');
    device_database::add_port_device(u"longest", stored(longest), u"260 characters");
    device_database::add_port_device(u"too long", stored(too_long), u"261 characters");
    device_database::add_port_device(u"no value", std::nullopt, u"no PortName");
    device_database::add_port_device(u"binary", stored(u"COM3\0"sv, REG_BINARY), u"of another type");
    // RegSetValueExW adds the final null where one follows the data in memory.
    device_database::add_port_device(u"not terminated", stored(u"COM3|"sv.substr(0, 4)), u"no final null");
    device_database::add_port_device(u"zero", stored(u"COM0\0"sv), u"COM0");
    EXPECT_THAT(EnumerateSerialPorts(), ElementsAre(SerialPortInfo{u"260 characters", 8}));
}

} // namespace
