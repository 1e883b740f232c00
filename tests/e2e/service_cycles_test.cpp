#include "demo_service.h"
#include "fixture.h"
#include "support/handle_count.h"

#include <algorithm>

namespace {

using namespace e2e;

using service_cycles_test = machine_test;

TEST_F(service_cycles_test, handles_do_not_grow_over_100_starts_and_stops)
{
    const demo_service service;
    service.install();
    const utility program(service.program());
    const auto start_stop_and_count = [&] {
        program.control(id::start).click();
        EXPECT_EQ(demo_service::state(), DWORD{SERVICE_RUNNING});
        program.control(id::stop).click();
        EXPECT_EQ(demo_service::state(), DWORD{SERVICE_STOPPED});
        return support::handle_count(program.process_id());
    };
    std::size_t before = 0;
    for (int warm_up = 0; warm_up < 5; ++warm_up)
        before = std::max(before, start_stop_and_count());
    std::size_t after = 0;
    for (int cycle = 0; cycle < 100 && !HasFailure(); ++cycle)
        after = start_stop_and_count();
    EXPECT_LE(after, before + handles_of_update_check);
    RecordProperty("handles_before", static_cast<int>(before));
    RecordProperty("handles_after", static_cast<int>(after));
    EXPECT_EQ(program.close(), 0U);
}

} // namespace
