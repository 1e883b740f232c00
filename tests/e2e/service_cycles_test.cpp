#include "fixture.h"
#include "utility_driver/demo_service.h"

namespace {

using namespace e2e;

using service_cycles_test = machine_test;

TEST_F(service_cycles_test, handles_do_not_grow_over_100_starts_and_stops)
{
    const demo_service service;
    service.install();
    support::debug_monitor log;
    const utility program(service.program());
    expect_no_more_handles(log, program, 100, [&] {
        program.control(id::start).click();
        EXPECT_EQ(demo_service::state(), DWORD{SERVICE_RUNNING});
        program.control(id::stop).click();
        EXPECT_EQ(demo_service::state(), DWORD{SERVICE_STOPPED});
    });
    EXPECT_EQ(program.close(), 0U);
}

} // namespace
