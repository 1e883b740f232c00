#pragma once

#include "device_database/device_database.h"
#include "settings_key.h"
#include "support/handle_count.h"
#include "support/reload_listener.h"
#include "ui_driver/polling.h"
#include "utility.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

namespace e2e {

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

/// The program holds no more handles after `rounds` of an action than before. It looks for updates two seconds after
/// its start: as many as the system's libraries keep of that at most are left out.
template <typename Action>
void expect_no_more_handles(const utility& program, int rounds, Action action)
{
    constexpr int warm_up = 10;
    constexpr std::size_t kept_by_libraries = 40;
    const auto count_after_action = [&] {
        action();
        return support::handle_count(program.process_id());
    };
    std::size_t before = 0;
    for (int round = 0; round < warm_up; ++round)
        before = std::max(before, count_after_action());
    ASSERT_GT(before, 0U);
    std::size_t after = 0;
    for (int round = 0; round < rounds && !testing::Test::HasFailure(); ++round)
        after = count_after_action();
    EXPECT_LE(after, before + kept_by_libraries);
}

} // namespace e2e
