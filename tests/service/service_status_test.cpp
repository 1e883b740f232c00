#include "service/service_status.h"
#include "support/cases.h"

#include <gtest/gtest.h>

namespace {

using namespace tidelink;
using enum service_lookup;

// SERVICE_STATUS::dwCurrentState
enum : std::uint32_t { stopped = 1, start_pending, stop_pending, running, continue_pending, pause_pending, paused };

struct view_case {
    const char* name;
    service_finding found;
    std::optional<service_view> view;
};

class view_test : public testing::TestWithParam<view_case> {};

TEST_P(view_test, follows_from_what_was_found)
{
    EXPECT_EQ(view_of(GetParam().found), GetParam().view);
}

constexpr service_view both_disabled{
    .status = service_text::standalone, .can_start = false, .can_stop = false, .offers_install = false};
constexpr service_view both_disabled_install{
    .status = service_text::standalone, .can_start = false, .can_stop = false, .offers_install = true};
constexpr service_view to_install{
    .status = service_text::not_installed, .can_start = true, .can_stop = false, .offers_install = true};
constexpr service_view to_start{
    .status = service_text::stopped, .can_start = true, .can_stop = false, .offers_install = false};
constexpr service_view to_stop{
    .status = service_text::running, .can_start = false, .can_stop = true, .offers_install = false};
constexpr auto unchanged = std::nullopt;

INSTANTIATE_TEST_SUITE_P(service_status, view_test,
                         testing::ValuesIn(std::to_array<view_case>({
                             {"no_answer", {failed, 0, false}, both_disabled},
                             {"no_answer_while_a_server_listens", {failed, 0, true}, both_disabled},
                             {"absent", {no_such_name, 0, false}, to_install},
                             {"absent_standalone", {no_such_name, 0, true}, both_disabled_install},
                             {"stopped", {found, stopped, false}, to_start},
                             {"stopped_standalone", {found, stopped, true}, both_disabled},
                             {"stopping_counts_as_stopped", {found, stop_pending, false}, to_start},
                             {"stopping_standalone", {found, stop_pending, true}, both_disabled},
                             {"running", {found, running, false}, to_stop},
                             {"running_is_no_standalone", {found, running, true}, to_stop},
                             {"starting", {found, start_pending, false}, unchanged},
                             {"starting_while_a_server_listens", {found, start_pending, true}, unchanged},
                             {"continuing", {found, continue_pending, false}, unchanged},
                             {"pausing", {found, pause_pending, false}, unchanged},
                             {"paused", {found, paused, false}, unchanged},
                             {"a_state_that_does_not_exist", {found, 8, false}, unchanged},
                         })),
                         support::name_of_row);

TEST(service_status_test, a_server_is_looked_for_only_where_the_service_does_not_run)
{
    EXPECT_TRUE(may_run_standalone({.lookup = no_such_name}));
    for (const std::uint32_t state : {stopped, stop_pending})
        EXPECT_TRUE(may_run_standalone({.lookup = found, .state = state})) << state;
    for (const std::uint32_t state : {start_pending, running, continue_pending, pause_pending, paused})
        EXPECT_FALSE(may_run_standalone({.lookup = found, .state = state})) << state;
    EXPECT_FALSE(may_run_standalone({.lookup = failed, .state = stopped}));
}

} // namespace
