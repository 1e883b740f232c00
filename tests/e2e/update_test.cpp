// e2e_update_test.exe PROGRAM FOLDER [GoogleTest's options]: the program asks a server on this machine for updates,
// which answers by the scenario whose name is written to FOLDER.

#include "base/unique_handle.h"
#include "fixture.h"
#include "support/cases.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <wincrypt.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

namespace {

using namespace e2e;
using namespace std::chrono_literals;
using ui_driver::eventually;

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

girder::unique_handle<store_traits> root_store()
{
    return girder::unique_handle<store_traits>(
        ::CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, L"Root"));
}

/// Has this Wine prefix alone trust the server's authority, which is a new one in every run, from now on.
void trust_authority()
{
    const std::string encoded = content_of(server_folder / "authority.der");
    ASSERT_TRUE(::CertAddEncodedCertificateToStore(
        root_store().get(), X509_ASN_ENCODING, reinterpret_cast<const BYTE*>(encoded.data()),
        static_cast<DWORD>(encoded.size()), CERT_STORE_ADD_REPLACE_EXISTING, nullptr));
}

class update_test : public machine_test {
protected:
    void SetUp() override
    {
        machine_test::SetUp();
        std::filesystem::remove(server_folder / "requests");
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

    static void play(const std::string& scenario) { std::ofstream(server_folder / "scenario") << scenario; }

    static std::size_t requests()
    {
        const std::string list = content_of(server_folder / "requests");
        return static_cast<std::size_t>(std::ranges::count(list, '\n'));
    }

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

    static bool offered(const utility& program)
    {
        return !ui_driver::find_dialogs(question_title, program.process_id()).empty();
    }

    /// Answers as a window does that is not busy.
    static bool answers(const ui_driver::dialog& window)
    {
        DWORD_PTR result = 0;
        return ::SendMessageTimeoutW(window.handle(), WM_NULL, 0, 0, SMTO_ABORTIFHUNG, 500, &result) != 0;
    }

    std::string record() const { return content_of(record_); }

private:
    const std::filesystem::path record_ = server_folder / "installer record";
};

// Comes first, because nothing takes the trust back.
TEST_F(update_test, a_server_without_trust_is_not_believed)
{
    play("good");
    const utility program;
    const ui_driver::dialog window = program.window();
    EXPECT_FALSE(eventually([&] { return offered(program) || requests() > 0; }, 4s));
    EXPECT_TRUE(answers(window));
    EXPECT_EQ(program.close(), 0U);
}

TEST_F(update_test, yes_starts_the_installer_which_waits_for_the_end)
{
    trust_authority();
    play("good");
    const utility program;
    const ui_driver::dialog question = program.message(question_title);
    EXPECT_EQ(utility::text_of(question),
              "Tidelink Port Server version 7.01.01.1700 is available. Do you want to upgrade now?");
    EXPECT_THAT(content_of(server_folder / "requests"),
                testing::StartsWith("/dispatch/tps-server7/checkforupdates?ver=701001604\n/setup.exe\n"));
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
    trust_authority();
    play("good");
    const utility program;
    utility::answer(program.message(question_title), id::no);
    EXPECT_TRUE(eventually([] { return left_folders() == 0; }));
    EXPECT_EQ(program.close(), 0U);
    EXPECT_EQ(record(), "");
}

TEST_F(update_test, changes_that_are_not_applied_are_asked_about)
{
    trust_authority();
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

TEST_F(update_test, a_release_without_an_installer_is_told)
{
    trust_authority();
    play("no_installer");
    const utility program;
    const ui_driver::dialog told = program.message(question_title);
    EXPECT_THAT(utility::text_of(told), testing::HasSubstr("7.01.01.1700 is available."));
    utility::answer(told, id::ok);
    EXPECT_EQ(program.close(), 0U);
}

TEST_F(update_test, a_timer_message_of_another_program_during_the_look_changes_nothing)
{
    constexpr WPARAM timer_of_update_check = 0x5550;
    trust_authority();
    play("manifest_stalled");
    const utility program;
    const ui_driver::dialog window = program.window();
    EXPECT_TRUE(eventually([] { return requests() == 1; }));
    for (int times = 0; times < 3; ++times)
        ::PostMessageW(window.handle(), WM_TIMER, timer_of_update_check, 0);
    ui_driver::send(window.handle(), WM_NULL);
    EXPECT_TRUE(eventually([&] { return answers(window); }));
    EXPECT_TRUE(ui_driver::find_dialogs(error_title, program.process_id()).empty());
    EXPECT_EQ(requests(), 1U);
    EXPECT_EQ(program.close(), 0U);
}

struct silent_case {
    const char* name;
    std::size_t requests;
};
class silent_test : public update_test, public testing::WithParamInterface<silent_case> {};

TEST_P(silent_test, is_not_offered_and_leaves_nothing)
{
    trust_authority();
    play(GetParam().name);
    const utility program;
    const ui_driver::dialog window = program.window();
    EXPECT_TRUE(eventually([] { return requests() >= GetParam().requests; }));
    // What comes of the last answer comes at once; until then the window must not be busy.
    const auto late = std::chrono::steady_clock::now() + 1s;
    while (std::chrono::steady_clock::now() < late && !offered(program))
        ASSERT_TRUE(answers(window));
    EXPECT_FALSE(offered(program));
    EXPECT_EQ(requests(), GetParam().requests);
    EXPECT_EQ(program.close(), 0U);
}

INSTANTIATE_TEST_SUITE_P(scenarios, silent_test,
                         testing::ValuesIn(std::vector<silent_case>{
                             {"same_version", 1},
                             {"older", 1},
                             {"manifest_404", 1},
                             {"manifest_500", 1},
                             {"manifest_empty", 1},
                             {"manifest_truncated", 1},
                             {"manifest_oversized", 1},
                             {"manifest_malformed", 1},
                             {"manifest_of_wrong_kind", 1},
                             {"manifest_stalled", 1},
                             {"installer_over_http", 1},
                             {"installer_404", 2},
                             {"installer_truncated", 2},
                             {"installer_oversized", 2},
                             {"installer_stalled", 2},
                             {"wrong_size", 2},
                             {"wrong_digest", 2},
                             {"unsigned", 2},
                             {"tampered", 2},
                             {"other_publisher", 2},
                             {"unknown_authority", 2},
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
