// The time of day is set back, or forward, while the program waits or works.

#include "support/cases.h"
#include "time_of_day.h"
#include "utility_driver/demo_service.h"

#include <array>
#include <optional>

namespace {

using namespace e2e;
using namespace std::chrono_literals;
using ui_driver::eventually;

struct clock_case {
    const char* name;
    std::chrono::hours shift;
};
class clock_test : public machine_test, public testing::WithParamInterface<clock_case> {};

/// As it is before "Please Wait" appears.
bool is_blocked(const ui_driver::dialog& window)
{
    DWORD_PTR result = 0;
    return ::SendMessageTimeoutW(window.handle(), WM_NULL, 0, 0, SMTO_NORMAL, 50, &result) == 0;
}

TEST_P(clock_test, neither_ends_nor_prolongs_what_is_under_way)
{
    const std::chrono::hours shift = GetParam().shift;
    const demo_service service;
    service.install();
    service.set(L"service", L"start_ms", 3000);
    support::debug_monitor log;
    const auto now = [] { return std::chrono::steady_clock::now(); };
    std::optional<utility> run;
    std::optional<time_of_day> clock_of_run;
    const auto asked = [&] { return log.of(run->process_id()).find("[InternetOpenUrlW]") != std::string::npos; };
    auto started = now();
    // A busy machine may be too late for the two seconds before the check for updates.
    do {
        clock_of_run.reset();
        run.reset();
        started = now();
        run.emplace(service.program());
        clock_of_run.emplace(*run).shift(shift);
    } while (asked());
    const utility& program = *run;
    const time_of_day& clock = *clock_of_run;
    EXPECT_TRUE(eventually(asked));
    EXPECT_GE(now() - started, 2s);
    clock.shift(0h);

    const ui_driver::dialog window = program.window();
    const auto pressed = now();
    window.item(id::start).post_click();
    ASSERT_TRUE(eventually([&] { return is_blocked(window); }));
    clock.shift(shift);
    const ui_driver::dialog waiting = program.message(wait_title);
    EXPECT_GE(now() - pressed, 450ms);
    clock.shift(0h);
    clock.shift(shift);
    waiting.wait_until_closed();
    EXPECT_GE(now() - pressed, 2900ms);
    EXPECT_TRUE(eventually([&] { return window.item(id::stop).enabled(); }));

    program.control(id::auto_discovery).click();
    clock.shift(0h);
    program.control(id::apply).click();
    clock.shift(shift);
    EXPECT_FALSE(program.apply_enabled());
    EXPECT_TRUE(eventually([&] { return service.log().ends_with("; auto-discovery off\n"); })) << service.log();
    window.item(id::stop).post_click();
    clock.shift(0h);
    EXPECT_TRUE(eventually([&] { return window.item(id::start).enabled(); }));
    EXPECT_TRUE(ui_driver::find_dialogs(error_title, program.process_id()).empty());
    EXPECT_EQ(program.close(), 0U);
}

INSTANTIATE_TEST_SUITE_P(time_of_day, clock_test,
                         testing::ValuesIn(std::to_array<clock_case>({{"set_back", -5h}, {"set_forward", 3h}})),
                         support::name_of_row);

} // namespace
