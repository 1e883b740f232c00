#include "service/service_status.h"

#include <gtest/gtest.h>

namespace {

using namespace tidelink;
using enum service_lookup;
using shown = std::optional<service_view>;

// SERVICE_STATUS::dwCurrentState
enum : std::uint32_t { stopped = 1, start_pending, stop_pending, running, continue_pending, pause_pending, paused };

TEST(service_status_test, what_is_shown_follows_from_what_was_found)
{
    const shown standalone = service_view{.status = service_text::standalone};
    const shown standalone_install = service_view{.status = service_text::standalone, .offers_install = true};
    const shown to_install =
        service_view{.status = service_text::not_installed, .can_start = true, .offers_install = true};
    const shown to_start = service_view{.status = service_text::stopped, .can_start = true};
    const shown to_stop = service_view{.status = service_text::running, .can_stop = true};
    const shown unchanged;
    const struct {
        service_lookup lookup;
        std::uint32_t state;
        shown alone;
        shown while_a_server_listens;
    } rows[] = {
        {failed, 0, standalone, standalone},
        {no_such_name, 0, to_install, standalone_install},
        {found, stopped, to_start, standalone},
        {found, stop_pending, to_start, standalone},
        {found, running, to_stop, to_stop},
        {found, start_pending, unchanged, unchanged},
        {found, continue_pending, unchanged, unchanged},
        {found, pause_pending, unchanged, unchanged},
        {found, paused, unchanged, unchanged},
        {found, 8, unchanged, unchanged},
    };
    for (const auto& [lookup, state, alone, while_a_server_listens] : rows) {
        EXPECT_EQ(view_of({.lookup = lookup, .state = state}), alone) << state;
        EXPECT_EQ(view_of({.lookup = lookup, .state = state, .server_listens = true}), while_a_server_listens) << state;
        EXPECT_EQ(may_run_standalone({.lookup = lookup, .state = state}), alone != while_a_server_listens)
            << "a server is looked for only where it makes a difference";
    }
}

} // namespace
