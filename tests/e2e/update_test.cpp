// The program asks a server on this machine for updates, which answers by the scenario whose name is written to the
// server's folder.

#include "fixture.h"
#include "support/cases.h"
#include "time_of_day.h"
#include "ui_driver/round_trips.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <wincrypt.h>

#include <optional>

namespace {

using namespace e2e;
using namespace std::chrono_literals;
using ui_driver::eventually;

std::filesystem::path server_folder;

/// Kernel handles that the system's libraries keep open once the program has used them. Nothing else may remain of a
/// check. A later Wine may have other figures; whether they are the libraries' is seen by the types and names.
namespace kept {
constexpr std::size_t network = 6;      ///< its library's mutexes and sections, and its locks
constexpr std::size_t certificates = 8; ///< the registry keys of the stores of certificates
constexpr std::size_t connection = 1;   ///< to the server, for the next request
constexpr std::size_t cache = 1;        ///< the section with the index of answers
constexpr std::size_t log = 1;          ///< the mutex of the debug log
constexpr std::size_t question = 3;     ///< the registry keys of sounds and displays
constexpr std::size_t blocked_read = 4; ///< a read that waits for the server: the answer's file, twice, and two events
constexpr std::size_t refused_server = network + certificates + log;
constexpr std::size_t answer = network + certificates + connection + cache;
constexpr std::size_t failed_answer = answer + log;
} // namespace kept

class update_test : public machine_test {
protected:
    /// Has this Wine prefix alone trust the server's authority, which is a new one in every run.
    static void SetUpTestSuite()
    {
        server_folder = server_under_test;
        const std::string encoded = content_of(server_folder / "authority.der");
        ASSERT_TRUE(::CertAddEncodedCertificateToSystemStoreW(L"Root", reinterpret_cast<const BYTE*>(encoded.data()),
                                                              static_cast<DWORD>(encoded.size())));
    }
    void SetUp() override
    {
        machine_test::SetUp();
        std::filesystem::remove(record_);
        ::SetEnvironmentVariableW(L"TIDELINK_INSTALLER_RECORD", record_.c_str());
        remove_left_folders();
    }
    void TearDown() override
    {
        EXPECT_EQ(left_folders(), 0U);
        remove_left_folders();
        machine_test::TearDown();
    }

    static void play(const std::string& scenario)
    {
        std::filesystem::remove(server_folder / "requests");
        std::ofstream(server_folder / "scenario") << scenario;
        ASSERT_TRUE(eventually([&] { return content_of(server_folder / "playing") == scenario; }));
    }

    static std::size_t requests()
    {
        const std::string list = content_of(server_folder / "requests");
        return static_cast<std::size_t>(std::ranges::count(list, '\n'));
    }

    /// Neither ends a check nor begins another while there is one, or an answer.
    static void post_timer_of_another_program(const utility& program)
    {
        constexpr WPARAM timer_of_update_check = 0x5550;
        ::PostMessageW(program.window().handle(), WM_TIMER, timer_of_update_check, 0);
    }

    std::string logged(const utility& program) { return log_.of(program.process_id()); }

    /// The folders with installers that there are.
    static std::vector<std::filesystem::path> installer_folders()
    {
        std::vector<std::filesystem::path> folders;
        for (const auto& entry : std::filesystem::directory_iterator(L"C:\\windows\\Temp"))
            if (entry.path().filename().wstring().starts_with(L"tidelink-"))
                folders.push_back(entry.path());
        return folders;
    }
    static std::size_t left_folders() { return installer_folders().size(); }
    /// \return false when an installer still runs
    static bool remove_left_folders()
    {
        std::error_code error;
        for (const auto& folder : installer_folders())
            std::filesystem::remove_all(folder, error);
        return left_folders() == 0;
    }

    std::string record() const { return content_of(record_); }

    /// Starts the program and counts its handles before its check, which begins two seconds later: on a busy machine
    /// counting may take longer, and begins again.
    const utility& start_counted(const char* scenario)
    {
        bool counted = false;
        for (int attempt = 0; attempt < 10 && !counted; ++attempt) {
            program_.reset();
            remove_left_folders();
            play(scenario);
            program_.emplace();
            EXPECT_TRUE(program_->window().exists());
            handles_before_ = support::settled([this] { return handles(); }, 500ms);
            counted = !modules_of(program_->process_id()).contains(L"wininet.dll");
        }
        EXPECT_TRUE(counted);
        return *program_;
    }

    void expect_kept(std::size_t by_the_system)
    {
        std::size_t more = 0;
        EXPECT_TRUE(eventually([&] {
            // The thread pool lets its threads go after some seconds; each has had some handles.
            more = support::settled([this] { return handles(); }, 1s) - handles_before_;
            return more == by_the_system;
        })) << more
            << " more handles than before, of which the system keeps " << by_the_system;
    }

private:
    std::size_t handles() const { return support::handle_count(program_->process_id()); }

    std::optional<utility> program_;
    std::size_t handles_before_ = 0;
    const std::filesystem::path record_ = server_folder / "installer record";
    support::debug_monitor log_;
};

TEST_F(update_test, yes_applies_what_is_changed_and_starts_the_installer_which_waits_for_the_end)
{
    play("good");
    const utility program;
    program.control(id::auto_discovery).click();
    const ui_driver::dialog question = program.message(question_title);
    EXPECT_EQ(utility::text_of(question),
              "Tidelink Port Server version 7.01.01.1700 is available. Do you want to upgrade now?");
    const std::string agent = "Zelmark girder Library win7-compatible HTTP client. Version 1.0\n";
    EXPECT_EQ(content_of(server_folder / "requests"),
              "/dispatch/tps-server7/checkforupdates?ver=701001604 application/json " + agent + "/setup.exe */* " +
                  agent);
    const auto folders = installer_folders();
    ASSERT_EQ(folders.size(), 1U);
    const std::wstring file = (folders[0] / "tidelink-setup.exe").wstring();
    EXPECT_FALSE(::DeleteFileW(file.c_str())) << "open until it is started";
    EXPECT_EQ(::CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                            nullptr),
              INVALID_HANDLE_VALUE);
    utility::answer(question, id::yes);
    const ui_driver::dialog changes = program.message(question_title);
    EXPECT_THAT(utility::text_of(changes), testing::HasSubstr("Apply them before the upgrade?"));
    utility::answer(changes, id::yes);
    EXPECT_EQ(program.exit_code(), 0U);
    EXPECT_THAT(settings_key::read(), testing::Contains(testing::Key(u"autoDiscovery")));
    EXPECT_TRUE(eventually([&] { return record() == "waited\n"; })) << record();
    EXPECT_TRUE(eventually(remove_left_folders));
}

TEST_F(update_test, what_cannot_be_started_is_deleted_and_told)
{
    const utility& program = start_counted("not_a_program");
    utility::answer(program.message(question_title), id::yes);
    utility::answer(program.message(error_title), id::ok);
    expect_kept(kept::failed_answer + kept::question);
    EXPECT_EQ(left_folders(), 0U);
    EXPECT_EQ(program.close(), 0U);
}

TEST_F(update_test, a_release_without_an_installer_is_told_after_nine_redirects_at_most)
{
    {
        const utility& program = start_counted("nine_redirects");
        const ui_driver::dialog told = program.message(question_title);
        EXPECT_THAT(utility::text_of(told), testing::HasSubstr("7.01.01.1700 is available."));
        utility::answer(told, id::ok);
        expect_kept(kept::failed_answer + kept::question);
        EXPECT_EQ(program.close(), 0U);
    }
    play("ten_redirects");
    const utility program;
    EXPECT_TRUE(eventually([&] { return logged(program).find(" 00002F7C ") != std::string::npos; }));
    EXPECT_THAT(logged(program), testing::HasSubstr("update_offer.cpp("));
    EXPECT_EQ(program.close(), 0U) << "no box stands before the window";
}

TEST_F(update_test, announcements_are_plain_texts_in_the_about_box)
{
    constexpr int about_links = 1019;
    play("announcements");
    const utility program;
    std::u16string links;
    EXPECT_TRUE(eventually([&] {
        program.control(id::about).post_click();
        const ui_driver::dialog about = program.message(about_title);
        links = about.item(about_links).text();
        utility::answer(about, id::cancel);
        return links.find(u'\n') != std::u16string::npos;
    }));
    EXPECT_EQ(links, u"www.zelmark.example\n[[[bSpring [offer]]]]: 20 % off\nNewer language packs: Deutsch");
    EXPECT_EQ(program.close(), 0U);
}

TEST_F(update_test, a_server_that_falls_silent_is_given_up_after_30_seconds_whatever_the_clock_says)
{
    const utility& program = start_counted("manifest_stalled");
    const ui_driver::round_trips trips(program.window().handle());
    EXPECT_TRUE(eventually([] { return requests() == 1; }));
    const auto silent_since = std::chrono::steady_clock::now();
    const time_of_day clock(program);
    clock.shift(-5h);
    for (int times = 0; times < 3; ++times)
        post_timer_of_another_program(program);
    clock.shift(3h);
    EXPECT_TRUE(eventually([&] { return logged(program).find(" 00002EE2 ") != std::string::npos; }, 60s));
    EXPECT_GT(std::chrono::steady_clock::now() - silent_since, 29s);
    expect_kept(kept::failed_answer + kept::blocked_read);
    EXPECT_EQ(requests(), 1U);
    EXPECT_LT(trips.longest(), hang);
    EXPECT_EQ(program.close(), 0U);
}

TEST_F(update_test, closing_ends_a_transfer_at_once)
{
    for (const auto& [scenario, asked, folders] :
         {std::tuple("manifest_silent", 1U, 0U), {"installer_stalled", 2U, 1U}}) {
        play(scenario);
        const utility program;
        EXPECT_TRUE(eventually([&] { return requests() == asked && left_folders() == folders; }));
        const auto closed = std::chrono::steady_clock::now();
        EXPECT_EQ(program.close(), 0U);
        EXPECT_LT(std::chrono::steady_clock::now() - closed, 2s);
    }
}

struct unused_case {
    const char* name;
    std::size_t requests;
    const char* logged; ///< the error's code or text; empty when nothing has failed
    std::size_t kept = kept::failed_answer;
    bool offered = false;
};
class unused_test : public update_test, public testing::WithParamInterface<unused_case> {};

TEST_P(unused_test, leaves_nothing_of_its_check)
{
    const unused_case& row = GetParam();
    const utility& program = start_counted(row.name);
    const ui_driver::round_trips trips(program.window().handle());
    EXPECT_TRUE(eventually([&] {
        return requests() >= row.requests && logged(program).find(row.logged) != std::string::npos;
    })) << logged(program);
    if (row.offered)
        utility::answer(program.message(question_title), id::no);
    if (*row.logged == '\0')
        post_timer_of_another_program(program);
    expect_kept(row.kept);
    EXPECT_LT(trips.longest(), hang);
    EXPECT_EQ(requests(), row.requests);
    EXPECT_EQ(left_folders(), 0U);
    EXPECT_EQ(program.close(), 0U) << "no box stands before the window";
    EXPECT_EQ(record(), "");
}

INSTANTIATE_TEST_SUITE_P(scenarios, unused_test,
                         testing::ValuesIn(std::vector<unused_case>{
                             // Its question is drawn without Direct2D, which is logged.
                             {"good", 2, "", kept::failed_answer + kept::question, true},
                             {"same_version", 1, "", kept::answer},
                             {"older", 1, "", kept::answer},
                             {"nobody_listens", 0, " 00002EFD ", kept::network + kept::log},
                             {"server_of_an_unknown_authority", 0, " 00002F19 ", kept::refused_server},
                             {"server_of_another_name", 0, " 00002F06 ", kept::refused_server},
                             {"server_with_an_expired_certificate", 0, " 00002F05 ", kept::refused_server},
                             {"manifest_404", 1, " 80070057 "},
                             {"manifest_500", 1, " 80070057 "},
                             {"manifest_dropped", 1, " 80070057 ", kept::failed_answer - kept::connection},
                             {"manifest_empty", 1, "[Object expected]"},
                             {"manifest_truncated", 1, " 00002EFE "},
                             {"manifest_oversized", 1, " 000000DF ", kept::failed_answer - kept::connection},
                             {"manifest_malformed", 1, "[bad json format (1,0)]"},
                             {"manifest_of_wrong_kind", 1, "[Array expected]"},
                             {"manifest_elsewhere_over_http", 1, " 00002F7C ", kept::failed_answer - kept::cache},
                             {"installer_over_http", 1, "[The installer is not offered over https.]"},
                             {"installer_404", 2, " 80070057 "},
                             {"installer_truncated", 2, " 00002EFE "},
                             {"installer_oversized", 2, " 000000DF ", kept::failed_answer - kept::connection},
                             {"installer_elsewhere_over_http", 2, " 00002F7C "},
                             {"wrong_size", 2, "another size"},
                             {"wrong_digest", 2, "another digest"},
                             {"unsigned", 2, "no valid signature"},
                             {"tampered", 2, "no valid signature"},
                             {"other_publisher", 2, "signed by somebody else"},
                             {"unknown_authority", 2, "signer is not trusted"},
                         }),
                         support::name_of_row);

} // namespace
