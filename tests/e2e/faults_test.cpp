// What can go wrong around the program while it runs. docs/faults.md lists all of it, with what other tests show.

#include "base/utf.h"
#include "base/win32_error.h"
#include "fixture.h"
#include "program_folder.h"
#include "support/cases.h"
#include "ui_driver/polling.h"
#include "utility_driver/demo_service.h"

#include <array>
#include <fstream>
#include <set>
#include <thread>

namespace {

using namespace e2e;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;
using ui_driver::eventually;

void nothing(const demo_service&)
{}

void overwrite_server(const demo_service& service)
{
    std::ofstream(service.server(), std::ios::trunc) << "This is no program.";
}

void set_path_of_service(const wchar_t* path)
{
    ::ChangeServiceConfigW(open_demo_service().get(), SERVICE_NO_CHANGE, SERVICE_NO_CHANGE, SERVICE_NO_CHANGE, path,
                           nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
}

void delete_service(const demo_service&)
{
    ::DeleteService(open_demo_service().get());
}

struct service_case {
    const char* name;
    void (*prepare)(const demo_service& service);
    int button;
    /// While "Please Wait" is shown.
    void (*meanwhile)(const demo_service& service);
    DWORD error; ///< what the box tells, 0: there is no box
    const char16_t* status;
    const char16_t* start; ///< caption of the button
};

class service_fault_test : public machine_test, public testing::WithParamInterface<service_case> {
protected:
    demo_service service_;
};

TEST_P(service_fault_test, ends_as_expected)
{
    GetParam().prepare(service_);
    const utility program(service_.program());
    program.control(GetParam().button).post_click();
    if (GetParam().meanwhile != nothing) {
        EXPECT_TRUE(program.message(wait_title).exists());
        GetParam().meanwhile(service_);
    }
    if (GetParam().error != 0) {
        const ui_driver::dialog box = program.message(error_title);
        EXPECT_THAT(utility::text_of(box), HasSubstr(girder::to_utf8(girder::system_message(GetParam().error))));
        utility::answer(box, id::ok);
    }
    // The window takes part again when nothing is before it any more.
    const ui_driver::dialog window = program.window();
    EXPECT_TRUE(eventually([&] { return window.item(id::status).text() == GetParam().status; }))
        << girder::to_utf8(window.item(id::status).text());
    EXPECT_EQ(window.item(id::start).text(), GetParam().start);
    EXPECT_TRUE(ui_driver::find_dialogs(error_title, program.process_id()).empty());
    EXPECT_EQ(program.close(), 0U);
}

INSTANTIATE_TEST_SUITE_P(
    faults, service_fault_test,
    testing::ValuesIn(std::to_array<service_case>({
        {"the_server_to_install_is_no_program", overwrite_server, id::start, nothing, ERROR_BAD_EXE_FORMAT,
         u"Not installed", u"&Install"},
        // The program itself in the server's place finds the window and ends at once, without an error.
        {"the_server_to_install_ends_at_once_and_installs_nothing",
         [](const demo_service& service) {
             std::filesystem::remove(service.server());
             std::filesystem::copy_file(service.program(), service.server());
         },
         id::start, nothing, ERROR_SERVICE_DOES_NOT_EXIST, u"Not installed", u"&Install"},
        {"the_installed_server_is_no_program",
         [](const demo_service& service) {
             service.install();
             overwrite_server(service);
         },
         id::start, nothing, ERROR_BAD_EXE_FORMAT, u"Stopped", u"&Start"},
        {"the_installed_server_is_gone",
         [](const demo_service& service) {
             service.install();
             std::filesystem::remove(service.server());
         },
         id::start, nothing, ERROR_FILE_NOT_FOUND, u"Stopped", u"&Start"},
        {"the_installed_server_ends_at_once",
         [](const demo_service& service) {
             service.install();
             set_path_of_service(L"C:\\windows\\system32\\cmd.exe /c exit 0");
         },
         id::start, nothing, ERROR_SERVICE_REQUEST_TIMEOUT, u"Stopped", u"&Start"},
        {"the_service_is_deleted_while_it_stops",
         [](const demo_service& service) {
             service.install();
             service.set(L"service", L"stop_ms", 2500);
             service.start();
         },
         id::stop, delete_service, 0, u"Not installed", u"&Install"},
        {"the_service_is_deleted_while_it_starts",
         [](const demo_service& service) {
             service.install();
             service.set(L"service", L"start_ms", 2500);
         },
         id::start, delete_service, 0, u"Running", u"&Start"},
    })),
    support::name_of_row);

constexpr wchar_t reload_event[] = L"Global\\tidelink_{35B11BAB-5238-4E93-B06A-92332C5D20FA}_v1.01";

using shared_key_test = machine_test;

TEST_F(shared_key_test, a_key_deleted_under_the_window_is_written_anew)
{
    settings_key::write(u"autoDiscovery", number(0));
    const support::reload_listener server;
    const utility program;
    const ui_driver::dialog window = program.window();
    settings_key::remove();
    window.item(id::share_selected).click();
    program.check_ports({3});
    program.control(id::apply).click();
    EXPECT_TRUE(heard(server, 1));
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"autoDiscovery", number(0)), Pair(u"sharedPorts", ports({3}))));
    EXPECT_EQ(program.close(), 0U);
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
    EXPECT_EQ(program.close(), 0U);
}

/// Two copies of the program, as two sessions have them: the title of the first does not keep the second from starting.
class two_administrators_test : public machine_test {
protected:
    static constexpr char16_t other_title[] = u"the first administrator's";

    void SetUp() override
    {
        machine_test::SetUp();
        first_ = std::make_unique<utility>();
        windows_[0] = first_->window().handle();
        ::SendMessageW(windows_[0], WM_SETTEXT, 0, reinterpret_cast<LPARAM>(other_title));
        second_ = std::make_unique<utility>();
        windows_[1] = second_->window().handle();
    }
    void TearDown() override
    {
        first_.reset();
        second_.reset();
        machine_test::TearDown();
    }

    ui_driver::dialog window(std::size_t which) const { return ui_driver::dialog(windows_.at(which)); }
    const utility& program(std::size_t which) const { return which == 0 ? *first_ : *second_; }

    void choose(std::size_t which, int port) const
    {
        window(which).item(id::share_selected).click();
        const ui_driver::list_view list(window(which).item(id::port_list));
        const std::vector<ui_driver::list_row> rows = list.rows();
        for (std::size_t row = 0; row < rows.size(); ++row)
            if (rows[row].checked != (rows[row].parameter == port))
                list.toggle(static_cast<int>(row));
    }

    void close(std::size_t which) const
    {
        window(which).post_close();
        EXPECT_EQ(program(which).exit_code(), 0U);
    }

private:
    std::unique_ptr<utility> first_;
    std::unique_ptr<utility> second_;
    std::array<HWND, 2> windows_{};
};

TEST_F(two_administrators_test, one_after_the_other_the_last_one_wins_and_the_next_opening_shows_it)
{
    choose(0, 3);
    choose(1, 7);
    window(1).item(id::auto_discovery).click();
    window(0).item(id::apply).click();
    window(1).item(id::apply).click();
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"autoDiscovery", number(0)), Pair(u"sharedPorts", ports({7}))));
    EXPECT_TRUE(window(0).item(id::auto_discovery).checked()) << "what is shown is not changed under the user";
    close(0);
    close(1);
    const utility again;
    EXPECT_THAT(again.checked_ports(), ElementsAre(7));
    EXPECT_FALSE(again.control(id::auto_discovery).checked());
}

TEST_F(two_administrators_test, at_once_leave_what_can_be_read)
{
    // A save that meets the other's deletion of the key may fail, and then says so.
    const auto settled = [&](std::size_t which) {
        for (const ui_driver::dialog& box : ui_driver::find_dialogs(error_title, program(which).process_id()))
            utility::answer(box, id::ok);
        return ::IsWindowEnabled(window(which).handle()) && !window(which).item(id::apply).enabled();
    };
    choose(0, 3);
    choose(1, 7);
    for (int save = 0; save < 150; ++save) {
        for (const std::size_t which : {0U, 1U})
            window(which).item(id::auto_discovery).click();
        for (const std::size_t which : {0U, 1U})
            window(which).item(id::apply).post_click();
        for (const std::size_t which : {0U, 1U})
            ASSERT_TRUE(eventually([&] { return settled(which); }));
    }
    close(0);
    close(1);
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

struct shutdown_case {
    const char* name;
    void (*begin)(const utility& program);
};

class shutdown_test : public machine_test, public testing::WithParamInterface<shutdown_case> {};

TEST_P(shutdown_test, is_agreed_to_and_ends_the_program_without_a_save)
{
    settings_key::write(u"sharedPorts", ports({3}));
    const stored_values before = settings_key::read();
    const utility program;
    const HWND window = program.window().handle();
    program.control(id::auto_discovery).click();
    GetParam().begin(program);
    EXPECT_TRUE(ui_driver::send(window, WM_QUERYENDSESSION));
    ui_driver::send(window, WM_ENDSESSION, FALSE);
    EXPECT_TRUE(::IsWindow(window)) << "somebody else has refused";
    ui_driver::send(window, WM_QUERYENDSESSION);
    ::PostMessageW(window, WM_ENDSESSION, TRUE, 0);
    EXPECT_EQ(program.exit_code(), 0U);
    EXPECT_EQ(settings_key::read(), before);
}

INSTANTIATE_TEST_SUITE_P(during, shutdown_test,
                         testing::ValuesIn(std::to_array<shutdown_case>({
                             {"a_change_that_is_not_applied", [](const utility&) {}},
                             {"the_about_box",
                              [](const utility& program) {
                                  program.control(id::about).post_click();
                                  program.message(u"About Tidelink Port Server");
                              }},
                             {"the_editor_of_access_rights",
                              [](const utility& program) {
                                  program.control(id::security).post_click();
                                  program.access_editor();
                              }},
                             {"a_question",
                              [](const utility& program) {
                                  program.choose_language(0);
                                  program.message(question_title);
                              }},
                         })),
                         support::name_of_row);

using own_folder_test = program_folder_test;

// So that it needs no right to write there.
TEST_F(own_folder_test, the_program_writes_nothing_beside_itself)
{
    using entry = std::pair<std::filesystem::path, std::filesystem::file_time_type>;
    const auto entries = [] {
        std::set<entry> found;
        const auto folder = std::filesystem::path(program_under_test).parent_path();
        for (const auto& each : std::filesystem::recursive_directory_iterator(folder))
            found.emplace(each.path(), each.last_write_time());
        return found;
    };
    const std::set<entry> before = entries();
    const utility program;
    program.control(id::auto_discovery).click();
    program.control(id::apply).click();
    program.control(id::about).post_click();
    utility::answer(program.message(u"About Tidelink Port Server"), id::cancel);
    EXPECT_EQ(program.close(), 0U);
    EXPECT_EQ(entries(), before);
}

} // namespace
