#include "service/service_status.h"
#include "support/cases.h"

#include <gtest/gtest.h>

namespace {

using namespace tidelink;
using enum service_lookup;
using shown = std::optional<service_view>;

// SERVICE_STATUS::dwCurrentState
enum : std::uint32_t { stopped = 1, start_pending, stop_pending, running, continue_pending, pause_pending, paused };

struct view_case {
    const char* name;
    service_lookup lookup;
    std::uint32_t state;
    shown alone;
    shown while_a_server_listens;
};

class view_test : public testing::TestWithParam<view_case> {};

TEST_P(view_test, follows_from_what_was_found)
{
    const auto& [name, lookup, state, alone, while_a_server_listens] = GetParam();
    EXPECT_EQ(view_of({.lookup = lookup, .state = state}), alone);
    EXPECT_EQ(view_of({.lookup = lookup, .state = state, .server_listens = true}), while_a_server_listens);
    EXPECT_EQ(may_run_standalone({.lookup = lookup, .state = state}), alone != while_a_server_listens)
        << "a server is looked for only where it makes a difference";
}

const shown standalone = service_view{.status = service_text::standalone};
const shown standalone_install = service_view{.status = service_text::standalone, .offers_install = true};
const shown to_install = service_view{.status = service_text::not_installed, .can_start = true, .offers_install = true};
const shown to_start = service_view{.status = service_text::stopped, .can_start = true};
const shown to_stop = service_view{.status = service_text::running, .can_stop = true};
const shown unchanged;

INSTANTIATE_TEST_SUITE_P(service_status, view_test,
                         testing::ValuesIn(std::to_array<view_case>({
                             {"no_answer", failed, 0, standalone, standalone},
                             {"absent", no_such_name, 0, to_install, standalone_install},
                             {"stopped", found, stopped, to_start, standalone},
                             {"stopping_counts_as_stopped", found, stop_pending, to_start, standalone},
                             {"running", found, running, to_stop, to_stop},
                             {"starting", found, start_pending, unchanged, unchanged},
                             {"continuing", found, continue_pending, unchanged, unchanged},
                             {"pausing", found, pause_pending, unchanged, unchanged},
                             {"paused", found, paused, unchanged, unchanged},
                             {"a_state_that_does_not_exist", found, 8, unchanged, unchanged},
                         })),
                         support::name_of_row);

} // namespace
