#include "fixture.h"
#include "ui_driver/polling.h"
#include "utility_driver/demo_service.h"

namespace {

using namespace e2e;
using ui_driver::eventually;

using service_test = machine_test;

TEST_F(service_test, the_running_service_reads_what_was_applied)
{
    const demo_service service;
    service.install();
    service.start();
    const auto has_logged = [&](const char* text) { return service.log().find(text) != std::string::npos; };
    EXPECT_TRUE(eventually([&] { return has_logged("started, sharing all ports; auto-discovery on"); }))
        << service.log();
    const utility program;
    program.control(id::share_selected).click();
    program.check_ports({3, 10});
    program.control(id::auto_discovery).click();
    program.control(id::apply).click();
    EXPECT_TRUE(eventually([&] { return has_logged("reloaded, "); }));
    EXPECT_EQ(program.close(), 0U);
    EXPECT_TRUE(service.stop());
    EXPECT_THAT(service.log(),
                testing::ContainsRegex("reloaded, sharing COM3 COM10; auto-discovery off\\n.* stopped\\n$"));
}

} // namespace
