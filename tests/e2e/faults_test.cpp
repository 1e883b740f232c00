// What can go wrong around the program while it runs. docs/faults.md lists all of it, with what other tests show.

#include "fixture.h"
#include "support/cases.h"
#include "utility_driver/demo_service.h"

#include <array>
#include <optional>
#include <thread>

namespace {

using namespace e2e;
using testing::AnyOf;
using testing::ElementsAre;
using testing::Pair;
using ui_driver::eventually;
using clock = std::chrono::steady_clock;

constexpr wchar_t reload_event[] = L"Global\\tidelink_{35B11BAB-5238-4E93-B06A-92332C5D20FA}_v1.01";

using shared_key_test = machine_test;

TEST_F(shared_key_test, deleted_and_not_to_be_written_is_reported_and_written_anew_by_a_later_save)
{
    settings_key::write(u"autoDiscovery", number(0));
    const support::reload_listener server;
    const utility program;
    program.control(id::share_selected).click();
    settings_key::block();
    program.control(id::ok).post_click();
    const ui_driver::dialog box = program.message(error_title);
    EXPECT_THAT(utility::text_of(box), testing::HasSubstr("(0x"));
    utility::answer(box, id::ok);
    EXPECT_TRUE(heard(server, 0));
    EXPECT_TRUE(program.control(id::share_selected).checked());
    EXPECT_FALSE(program.apply_enabled());

    settings_key::remove();
    program.check_ports({3});
    program.control(id::ok).post_click();
    EXPECT_EQ(program.exit_code(), 0U);
    EXPECT_TRUE(heard(server, 1));
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"autoDiscovery", number(0)), Pair(u"sharedPorts", ports({3}))));
}

TEST_F(shared_key_test, a_server_that_comes_and_goes_does_not_keep_settings_from_being_saved)
{
    const utility program;
    const ui_driver::dialog window = program.window();
    const std::jthread server([](const std::stop_token& stop) {
        while (!stop.stop_requested())
            const girder::unique_kernel_handle listening(::CreateEventW(nullptr, FALSE, FALSE, reload_event));
    });
    for (int save = 0; save < 100; ++save) {
        window.item(id::auto_discovery).click();
        window.item(id::apply).click();
        ASSERT_FALSE(window.item(id::apply).enabled());
    }
    EXPECT_TRUE(ui_driver::find_dialogs(error_title, program.process_id()).empty());
}

/// Two copies of the program, as two sessions have them. Both have chosen one port.
class two_administrators_test : public machine_test {
protected:
    void SetUp() override
    {
        machine_test::SetUp();
        first_.emplace();
        // The title of the first would keep the second from starting.
        const HWND window = first_->window().handle();
        ::SendMessageW(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(u"started in another session"));
        second_.emplace();
        second_->window();
        ::SendMessageW(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(main_window_title));
        for (const auto& [program, port] : {std::pair(&*first_, 3), std::pair(&*second_, 7)}) {
            program->control(id::share_selected).click();
            program->check_ports({port});
        }
    }

    std::optional<utility> first_;
    std::optional<utility> second_;
};

TEST_F(two_administrators_test, one_after_the_other_the_last_one_wins_and_the_next_opening_shows_it)
{
    second_->control(id::auto_discovery).click();
    first_->control(id::apply).click();
    second_->control(id::apply).click();
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"autoDiscovery", number(0)), Pair(u"sharedPorts", ports({7}))));
    EXPECT_TRUE(first_->control(id::auto_discovery).checked()) << "what is shown is not changed under the user";
    EXPECT_EQ(first_->close(), 0U);
    EXPECT_EQ(second_->close(), 0U);
    const utility again;
    EXPECT_THAT(again.checked_ports(), ElementsAre(7));
    EXPECT_FALSE(again.control(id::auto_discovery).checked());
}

TEST_F(two_administrators_test, at_once_leave_what_can_be_read)
{
    const utility* const both[] = {&*first_, &*second_};
    // A save that meets the other's deletion of the key may fail, and then says so.
    const auto settled = [](const utility& program, const ui_driver::dialog& window) {
        for (const ui_driver::dialog& box : ui_driver::find_dialogs(error_title, program.process_id()))
            utility::answer(box, id::ok);
        return ::IsWindowEnabled(window.handle()) && !window.item(id::apply).enabled();
    };
    for (int save = 0; save < 150; ++save) {
        const ui_driver::dialog windows[] = {first_->window(), second_->window()};
        for (const ui_driver::dialog& window : windows)
            window.item(id::auto_discovery).click();
        for (const ui_driver::dialog& window : windows)
            window.item(id::apply).post_click();
        for (const int which : {0, 1})
            ASSERT_TRUE(eventually([&] { return settled(*both[which], windows[which]); }));
    }
    for (const utility* const program : both)
        EXPECT_EQ(program->close(), 0U);
    for (const auto& [name, value] : settings_key::read()) {
        if (name == u"sharedPorts")
            EXPECT_THAT(value, AnyOf(ports({3}), ports({7})));
        else
            EXPECT_THAT(std::pair(name, value), Pair(u"autoDiscovery", number(0)));
    }
    const utility again;
    EXPECT_FALSE(again.apply_enabled());
    EXPECT_TRUE(ui_driver::find_dialogs(error_title, again.process_id()).empty());
}

struct ending_case {
    const char* name;
    UINT message;
    int button;            ///< pressed before; 0: none
    const char16_t* title; ///< of the box that it opens; null: the system's editor of access rights
    const wchar_t* delay;  ///< of the service
};

/// Ends of the program with a change that is not applied, while something is under way.
class ending_test : public machine_test, public testing::WithParamInterface<ending_case> {
protected:
    demo_service service_;
};

TEST_P(ending_test, is_prompt_and_saves_nothing)
{
    const auto& [name, message, button, title, delay] = GetParam();
    settings_key::write(u"sharedPorts", ports({3, 12}));
    const stored_values before = settings_key::read();
    service_.install();
    service_.set(L"service", delay, 8000);
    const utility program(service_.program());
    const HWND window = program.window().handle();
    program.control(id::auto_discovery).click();
    if (button != 0) {
        program.control(button).post_click();
        EXPECT_TRUE((title ? program.message(title) : program.access_editor()).exists());
    }
    if (message == WM_ENDSESSION) {
        EXPECT_TRUE(ui_driver::send(window, WM_QUERYENDSESSION));
        ui_driver::send(window, WM_ENDSESSION, FALSE);
        EXPECT_TRUE(::IsWindow(window)) << "somebody else has refused";
        ui_driver::send(window, WM_QUERYENDSESSION);
    }
    const auto begin = clock::now();
    ::PostMessageW(window, message, TRUE, 0);
    EXPECT_EQ(program.exit_code(), 0U);
    EXPECT_LT(clock::now() - begin, std::chrono::seconds(1));
    EXPECT_EQ(settings_key::read(), before);
}

INSTANTIATE_TEST_SUITE_P(
    by, ending_test,
    testing::ValuesIn(std::to_array<ending_case>({
        {"the_close_box_while_the_service_starts", WM_CLOSE, id::start, wait_title, L"start_ms"},
        {"the_close_box_during_a_call_that_blocks", WM_CLOSE, id::start, wait_title, L"connect_ms"},
        {"the_session_while_the_service_starts", WM_ENDSESSION, id::start, wait_title, L"start_ms"},
        {"the_session_with_nothing_open", WM_ENDSESSION, 0, nullptr, L""},
        {"the_session_with_the_about_box", WM_ENDSESSION, id::about, about_title, L""},
        {"the_session_with_the_editor_of_access_rights", WM_ENDSESSION, id::security, nullptr, L""},
        {"the_session_with_a_question", WM_ENDSESSION, id::apply, question_title, L""},
    })),
    support::name_of_row);

} // namespace
