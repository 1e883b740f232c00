#pragma once

#include "device_database/device_database.h"
#include "settings_key.h"
#include "support/reload_listener.h"
#include "ui_driver/polling.h"
#include "utility.h"

#include <gmock/gmock.h>

#include <string>

namespace e2e {

/// The program looks for updates two seconds after its start: as many handles, the system's libraries keep at most.
inline constexpr std::size_t handles_of_update_check = 40;

/// A machine with the ports COM1, COM3, COM7 and COM10, and nothing stored.
class machine_test : public testing::Test {
protected:
    void SetUp() override
    {
        settings_key::remove();
        device_database::remove_port_devices();
        for (const std::u16string port : {u"COM10", u"COM3", u"COM7"})
            device_database::add_port(port, u"USB Serial Port (" + port + u")");
        device_database::add_port(u"COM1", u"Communications Port (COM1)");
    }
    void TearDown() override { settings_key::remove(); }
};

/// Waits until the server was signalled `times` times since it listens. \return false when it was more or less
inline bool heard(const support::reload_listener& server, int times)
{
    return ui_driver::eventually([&] { return server.signals() >= times; }) && server.signals() == times;
}

} // namespace e2e
