// e2e_update_test.exe PROGRAM FOLDER [GoogleTest's options]: the program asks a server on this machine for updates,
// which answers by the scenario whose name is written to FOLDER.

#include "base/unique_handle.h"
#include "fixture.h"
#include "support/cases.h"
#include "support/debug_monitor.h"
#include "support/gui_objects.h"
#include "support/handle_count.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <tlhelp32.h>
#include <wincrypt.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <thread>

namespace {

using namespace e2e;
using namespace std::chrono_literals;
using ui_driver::eventually;

constexpr char16_t about_title[] = u"About Tidelink Port Server";

std::filesystem::path server_folder;

std::string content_of(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

struct store_traits {
    using raw_type = HCERTSTORE;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type store) noexcept { ::CertCloseStore(store, 0); }
};

/// Has this Wine prefix alone trust the server's authority, which is a new one in every run.
void trust_authority()
{
    const girder::unique_handle<store_traits> roots(
        ::CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, L"Root"));
    const std::string encoded = content_of(server_folder / "authority.der");
    ASSERT_TRUE(::CertAddEncodedCertificateToStore(
        roots.get(), X509_ASN_ENCODING, reinterpret_cast<const BYTE*>(encoded.data()),
        static_cast<DWORD>(encoded.size()), CERT_STORE_ADD_REPLACE_EXISTING, nullptr));
}

/// Kernel handles that the system's libraries keep open once the program has used them. Nothing else may remain of a
/// check. A later Wine may have other figures; whether they are the libraries' is seen by the types and names.
namespace kept {
constexpr std::size_t network = 6;      ///< its library's mutexes and sections, and its locks
constexpr std::size_t certificates = 8; ///< the registry keys of the stores of certificates
constexpr std::size_t connection = 1;   ///< to the server, for the next request
constexpr std::size_t cache = 1;        ///< the section with the index of answers
constexpr std::size_t exception = 5;    ///< what the compiler's library holds for a thread, and the debug log's mutex
constexpr std::size_t question = 3;     ///< the registry keys of sounds and displays
constexpr std::size_t refused_server = network + certificates + exception;
constexpr std::size_t answer = network + certificates + connection + cache;
constexpr std::size_t failed_answer = answer + exception;
} // namespace kept

/// Whether a process has loaded the system's network library, which is the first thing that a check does.
bool has_begun_to_check(DWORD process)
{
    const girder::unique_file modules(::CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, process));
    MODULEENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = ::Module32FirstW(modules.get(), &entry); more; more = ::Module32NextW(modules.get(), &entry))
        if (entry.szModule == std::wstring_view(L"wininet.dll"))
            return true;
    return false;
}

/// What a process holds of the system's.
struct holdings {
    std::size_t kernel_handles;
    std::size_t gdi_objects;
    std::size_t windows;

    bool operator==(const holdings&) const = default;
};

/// A run of the program, which is watched from the appearance of its window on.
class watched_utility : public utility {
public:
    watched_utility() : window_(window()), watching_([this](const std::stop_token& ending) { watch(ending); }) {}

    bool offered() const { return offered_; }
    /// The longest time that the window has taken to answer.
    std::chrono::milliseconds longest() const { return longest_.load(); }
    holdings held() const
    {
        return {support::handle_count(process_id()), support::gdi_object_count(process()),
                support::window_count(process_id())};
    }

private:
    void watch(const std::stop_token& ending)
    {
        constexpr UINT patience_ms = 10'000;
        constexpr DWORD interval_ms = 10;
        while (!ending.stop_requested()) {
            const auto asked = std::chrono::steady_clock::now();
            DWORD_PTR result = 0;
            ::SendMessageTimeoutW(window_.handle(), WM_NULL, 0, 0, SMTO_NORMAL, patience_ms, &result);
            const auto taken = std::chrono::steady_clock::now() - asked;
            longest_ = std::max(longest_.load(), std::chrono::duration_cast<std::chrono::milliseconds>(taken));
            offered_ = offered_ || !ui_driver::find_dialogs(question_title, process_id()).empty();
            ::Sleep(interval_ms);
        }
    }

    ui_driver::dialog window_;
    std::atomic<bool> offered_ = false;
    std::atomic<std::chrono::milliseconds> longest_ = 0ms;
    std::jthread watching_;
};

class update_test : public machine_test {
protected:
    static void SetUpTestSuite() { trust_authority(); }
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

    struct counted_run {
        std::unique_ptr<watched_utility> program;
        holdings before;
    };
    /// Plays a scenario for a run of the program whose holdings were counted before it looks for updates. That is two
    /// seconds after its start: a busy machine may take longer to count, and begins again.
    static counted_run counted_before(const std::string& scenario)
    {
        constexpr int attempts = 10;
        for (int attempt = 0; attempt < attempts; ++attempt) {
            play(scenario);
            auto program = std::make_unique<watched_utility>();
            const holdings before = support::settled([&] { return program->held(); }, 500ms);
            if (!has_begun_to_check(program->process_id()))
                return {.program = std::move(program), .before = before};
            program.reset();
            remove_left_folders();
        }
        throw ui_driver::timed_out("the machine is too busy to count before the check");
    }

    /// The check has left nothing but what the system keeps, and the window has answered all the time.
    static void expect_nothing_left(const counted_run& run, std::size_t kept)
    {
        std::size_t more = 0;
        EXPECT_TRUE(eventually([&] {
            // The thread pool lets its threads go after some seconds; each has had some handles.
            more = support::settled([&] { return run.program->held().kernel_handles; }, 1s) - run.before.kernel_handles;
            return more == kept;
        })) << more
            << " more handles than before, of which the system keeps " << kept;
        EXPECT_EQ(run.program->held().windows, run.before.windows);
        EXPECT_LT(run.program->longest(), 2s);
    }

private:
    const std::filesystem::path record_ = server_folder / "installer record";
    support::debug_monitor log_;
};

TEST_F(update_test, yes_starts_the_installer_which_waits_for_the_end)
{
    play("good");
    const utility program;
    const ui_driver::dialog question = program.message(question_title);
    EXPECT_EQ(utility::text_of(question),
              "Tidelink Port Server version 7.01.01.1700 is available. Do you want to upgrade now?");
    EXPECT_EQ(content_of(server_folder / "requests"),
              "/dispatch/tps-server7/checkforupdates?ver=701001604\n/setup.exe\n");
    const auto folders = installer_folders();
    ASSERT_EQ(folders.size(), 1U);
    const std::wstring file = (folders[0] / "tidelink-setup.exe").wstring();
    EXPECT_FALSE(::DeleteFileW(file.c_str())) << "open until it is started";
    EXPECT_EQ(::CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                            nullptr),
              INVALID_HANDLE_VALUE);
    utility::answer(question, id::yes);
    EXPECT_EQ(program.exit_code(), 0U);
    EXPECT_TRUE(eventually([&] { return record() == "waited\n"; })) << record();
    EXPECT_TRUE(eventually(remove_left_folders));
}

TEST_F(update_test, no_deletes_the_installer_and_leaves_the_program_as_it_was)
{
    const counted_run run = counted_before("good");
    const watched_utility& program = *run.program;
    utility::answer(program.message(question_title), id::no);
    EXPECT_TRUE(eventually([] { return left_folders() == 0; }));
    // Its text is drawn without Direct2D, which throws here.
    expect_nothing_left(run, kept::answer + kept::exception + kept::question);
    EXPECT_EQ(program.close(), 0U);
    EXPECT_EQ(record(), "");
}

TEST_F(update_test, what_cannot_be_started_is_deleted_and_told)
{
    play("not_a_program");
    const utility program;
    utility::answer(program.message(question_title), id::yes);
    utility::answer(program.message(error_title), id::ok);
    EXPECT_EQ(left_folders(), 0U);
    EXPECT_EQ(program.close(), 0U);
}

TEST_F(update_test, changes_that_are_not_applied_are_asked_about)
{
    play("good");
    const utility program;
    program.control(id::auto_discovery).click();
    utility::answer(program.message(question_title), id::yes);
    const ui_driver::dialog question = program.message(question_title);
    EXPECT_THAT(utility::text_of(question), testing::HasSubstr("Apply them before the upgrade?"));
    utility::answer(question, id::yes);
    EXPECT_EQ(program.exit_code(), 0U);
    EXPECT_THAT(settings_key::read(), testing::Contains(testing::Key(u"autoDiscovery")));
    EXPECT_TRUE(eventually([&] { return record() == "waited\n"; }));
    EXPECT_TRUE(eventually(remove_left_folders));
}

TEST_F(update_test, a_release_without_an_installer_is_told_after_nine_redirects_at_most)
{
    for (const std::string scenario : {"no_installer", "nine_redirects"}) {
        play(scenario);
        const utility program;
        const ui_driver::dialog told = program.message(question_title);
        EXPECT_THAT(utility::text_of(told), testing::HasSubstr("7.01.01.1700 is available."));
        utility::answer(told, id::ok);
        EXPECT_EQ(program.close(), 0U);
    }
    play("ten_redirects");
    const watched_utility program;
    EXPECT_TRUE(eventually([&] { return logged(program).find(" 00002F7C ") != std::string::npos; }));
    EXPECT_EQ(program.close(), 0U);
    EXPECT_FALSE(program.offered());
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

TEST_F(update_test, a_server_that_falls_silent_is_given_up_after_30_seconds)
{
    play("manifest_stalled");
    const watched_utility program;
    EXPECT_TRUE(eventually([] { return requests() == 1; }));
    const auto silent_since = std::chrono::steady_clock::now();
    // Other programs' messages of its timer neither end the check nor begin another.
    constexpr WPARAM timer_of_update_check = 0x5550;
    for (int times = 0; times < 3; ++times)
        ::PostMessageW(program.window().handle(), WM_TIMER, timer_of_update_check, 0);
    EXPECT_TRUE(eventually([&] { return logged(program).find(" 00002EE2 ") != std::string::npos; }, 60s));
    EXPECT_GT(std::chrono::steady_clock::now() - silent_since, 29s);
    EXPECT_EQ(requests(), 1U);
    EXPECT_TRUE(ui_driver::find_dialogs(error_title, program.process_id()).empty());
    EXPECT_EQ(program.close(), 0U);
    EXPECT_FALSE(program.offered());
    EXPECT_LT(program.longest(), 2s);
}

TEST_F(update_test, closing_ends_a_download_at_once)
{
    play("installer_stalled");
    const utility program;
    EXPECT_TRUE(eventually([] { return requests() == 2 && left_folders() == 1; }));
    const auto closed = std::chrono::steady_clock::now();
    EXPECT_EQ(program.close(), 0U);
    EXPECT_LT(std::chrono::steady_clock::now() - closed, 2s);
}

struct silent_case {
    const char* name;
    std::size_t requests;
    const char* logged; ///< the error's code or text; empty when nothing has failed
    std::size_t kept = kept::failed_answer;
};
class silent_test : public update_test, public testing::WithParamInterface<silent_case> {};

TEST_P(silent_test, is_logged_not_offered_and_leaves_nothing)
{
    const counted_run run = counted_before(GetParam().name);
    const watched_utility& program = *run.program;
    EXPECT_TRUE(eventually([&] {
        return requests() >= GetParam().requests && logged(program).find(GetParam().logged) != std::string::npos;
    })) << logged(program);
    expect_nothing_left(run, GetParam().kept);
    EXPECT_EQ(program.held().gdi_objects, run.before.gdi_objects);
    EXPECT_EQ(requests(), GetParam().requests);
    EXPECT_EQ(left_folders(), 0U);
    EXPECT_EQ(program.close(), 0U);
    EXPECT_FALSE(program.offered());
}

INSTANTIATE_TEST_SUITE_P(scenarios, silent_test,
                         testing::ValuesIn(std::vector<silent_case>{
                             {"same_version", 1, "", kept::answer},
                             {"older", 1, "", kept::answer},
                             {"nobody_listens", 0, " 00002EFD ", kept::network + kept::exception},
                             {"server_of_an_unknown_authority", 0, " 00002F19 ", kept::refused_server},
                             {"server_of_another_name", 0, " 00002F06 ", kept::refused_server},
                             {"server_with_an_expired_certificate", 0, " 00002F05 ", kept::refused_server},
                             {"manifest_404", 1, " 80070057 "},
                             {"manifest_500", 1, " 80070057 "},
                             {"manifest_empty", 1, "[Object expected]"},
                             {"manifest_truncated", 1, " 00002EFE "},
                             {"manifest_oversized", 1, " 000000DF "},
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

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (argc != 3) {
        std::cerr << "e2e_update_test: which program, and which folder of the server?\n";
        return EXIT_FAILURE;
    }
    e2e::program_under_test = std::filesystem::absolute(argv[1]).u16string();
    server_folder = std::filesystem::absolute(argv[2]);
    return RUN_ALL_TESTS();
}
