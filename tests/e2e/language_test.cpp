#include "base/utf.h"
#include "base/wide.h"
#include "program_folder.h"
#include "utility_driver/processes.h"

#include <windows.h>

#include <winternl.h>

#include <fstream>
#include <vector>

namespace {

using namespace e2e;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// With a choice of the language packs that were built along with the program.
class language_test : public program_folder_test {
protected:
    /// Copies the pack of a locale, perhaps under another name.
    std::filesystem::path add_pack(const std::u16string& locale, const std::u16string& name = {}) const
    {
        for (const auto& pack : std::filesystem::directory_iterator(built_packs())) {
            const std::u16string file = pack.path().filename().u16string();
            if (!file.starts_with(locale + u"."))
                continue;
            const std::filesystem::path copy = packs() / (name.empty() ? file : name);
            std::filesystem::copy_file(pack.path(), copy);
            return copy;
        }
        ADD_FAILURE() << "no pack " << girder::to_utf8(locale);
        return {};
    }

    static std::vector<std::string> languages_in(const utility& program)
    {
        const HWND box = program.control(id::language).handle();
        std::vector<std::string> names;
        for (WPARAM i = 0; i < static_cast<WPARAM>(ui_driver::send(box, CB_GETCOUNT)); ++i) {
            wchar_t name[80]{};
            ui_driver::send(box, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(name));
            names.push_back(girder::to_utf8(girder::as_utf16(std::wstring_view(name))));
        }
        return names;
    }
    static std::string selected_in(const utility& program)
    {
        const LRESULT selected = ui_driver::send(program.control(id::language).handle(), CB_GETCURSEL);
        return languages_in(program).at(static_cast<std::size_t>(selected));
    }

    static std::string apply_text(const ui_driver::dialog& window)
    {
        return girder::to_utf8(window.item(id::apply).text());
    }
};

TEST_F(language_test, the_stored_language_is_shown_or_english_where_its_pack_is_malformed_empty_or_gone)
{
    add_pack(u"ja");
    add_pack(u"zh-cn");
    add_pack(u"de", u"en.Other English.1.lpack");
    const std::filesystem::path cut = add_pack(u"de");
    std::filesystem::resize_file(cut, std::filesystem::file_size(cut) - 1);
    std::ofstream(packs() / "pl.Polski.1.lpack").close(); // it cannot even be mapped
    for (const auto& [stored, shown, selected] : {std::tuple(u"ja", "すべてのポートを共有する", "日本語"),
                                                  {u"en", "Share all ports", "Other English"},
                                                  {u"de", "Share all ports", "Deutsch"},
                                                  {u"pl", "Share all ports", "Polski"},
                                                  {u"fr", "Share all ports", "English"}}) {
        settings_key::write(u"language", text(stored));
        const utility program;
        EXPECT_EQ(girder::to_utf8(program.control(id::share_all).text()), shown);
        EXPECT_THAT(languages_in(program), testing::UnorderedElementsAre("English", "Other English", "Deutsch",
                                                                         "Polski", "日本語", "简体中文"));
        EXPECT_EQ(selected_in(program), selected);
        EXPECT_FALSE(program.apply_enabled());
        program.control(id::auto_discovery).click();
        program.control(id::apply).click();
        EXPECT_THAT(settings_key::read(), Contains(Pair(u"language", text(stored))));
        EXPECT_EQ(program.close(), 0U);
    }
}

/// Reads the command line where the system keeps it in that process.
std::wstring command_line_of(HANDLE process)
{
    const auto query = reinterpret_cast<decltype(::NtQueryInformationProcess)*>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "NtQueryInformationProcess")));
    PROCESS_BASIC_INFORMATION basics{};
    PEB block{};
    RTL_USER_PROCESS_PARAMETERS parameters{};
    query(process, ProcessBasicInformation, &basics, sizeof basics, nullptr);
    ::ReadProcessMemory(process, basics.PebBaseAddress, &block, sizeof block, nullptr);
    ::ReadProcessMemory(process, block.ProcessParameters, &parameters, sizeof parameters, nullptr);
    std::wstring line(parameters.CommandLine.Length / sizeof(wchar_t), L'\0');
    ::ReadProcessMemory(process, parameters.CommandLine.Buffer, line.data(), parameters.CommandLine.Length, nullptr);
    return line;
}

TEST_F(language_test, a_change_with_yes_applies_what_is_pending_and_starts_one_copy_with_the_same_command_line)
{
    add_pack(u"de");
    const utility english;
    ASSERT_EQ(apply_text(english.window()), "Apply");
    const std::wstring command_line = command_line_of(english.process());
    ASSERT_THAT(command_line, testing::EndsWith(L"--handed to a restart"));
    english.control(id::auto_discovery).click();
    english.choose_language(1);
    const ui_driver::dialog question = english.message(question_title);
    EXPECT_EQ(utility::text_of(question),
              "You need to restart Tidelink Port Server to apply language change. Do you want to restart now?");
    utility::answer(question, id::yes);
    EXPECT_EQ(english.exit_code(), 0U);

    const ui_driver::dialog german = ui_driver::wait_for_dialog(main_window_title);
    EXPECT_EQ(apply_text(german), "Übernehmen");
    EXPECT_FALSE(german.item(id::apply).enabled());
    EXPECT_FALSE(german.item(id::auto_discovery).checked());
    EXPECT_THAT(settings_key::read(), ElementsAre(Pair(u"autoDiscovery", number(0)), Pair(u"language", text(u"de")),
                                                  Pair(u"sharedPorts", ports({1, 3, 7, 10}))));
    const std::vector<DWORD> copies = processes_of(L"tl_server_config.exe");
    ASSERT_EQ(copies.size(), 1U);
    const girder::unique_kernel_handle copy(::OpenProcess(PROCESS_ALL_ACCESS, FALSE, copies[0]));
    EXPECT_EQ(command_line_of(copy.get()), command_line);
    german.post_close();
    EXPECT_EQ(::WaitForSingleObject(copy.get(), static_cast<DWORD>(ui_driver::patience.count())), WAIT_OBJECT_0);
}

TEST_F(language_test, a_change_with_no_is_applied_later_and_a_pack_that_is_replaced_serves_until_the_end)
{
    const std::filesystem::path pack = add_pack(u"de");
    {
        const utility program;
        program.choose_language(1);
        utility::answer(program.message(question_title), id::no);
        EXPECT_TRUE(program.apply_enabled());
        EXPECT_EQ(apply_text(program.window()), "Apply") << "texts never change while the program runs";
        // Of the same language again. Unanswered, a question would hold this up.
        ui_driver::send(program.window().handle(), WM_COMMAND, MAKEWPARAM(id::language, CBN_SELCHANGE),
                        reinterpret_cast<LPARAM>(program.control(id::language).handle()));
        EXPECT_THAT(settings_key::read(), IsEmpty());
        program.control(id::apply).click();
        EXPECT_THAT(settings_key::read(), Contains(Pair(u"language", text(u"de"))));
        EXPECT_EQ(program.close(), 0U);
    }
    {
        const utility german;
        EXPECT_EQ(apply_text(german.window()), "Übernehmen");
        EXPECT_FALSE(std::ofstream(pack, std::ios::trunc).is_open()) << "it is mapped";
        std::filesystem::rename(pack, pack.wstring() + L".away");
        add_pack(u"ja", pack.filename().u16string());
        german.choose_language(0);
        const ui_driver::dialog question = german.message(question_title);
        EXPECT_EQ(girder::to_utf8(question.item(id::yes).text()), "Ja");
        utility::answer(question, id::no);
        german.control(id::apply).click();
        EXPECT_THAT(settings_key::read(), Contains(Pair(u"language", text(u"en"))));
        EXPECT_EQ(german.close(), 0U);
    }
    settings_key::write(u"language", text(u"de"));
    EXPECT_EQ(apply_text(utility().window()), "適用");
}

/// To be run for a user whose locale is de-DE.
using german_user_test = language_test;

TEST_F(german_user_test, starts_in_german_with_nothing_stored)
{
    add_pack(u"de");
    add_pack(u"fr", u"de-DE.in capitals.1.lpack");
    const utility program;
    EXPECT_EQ(apply_text(program.window()), "Übernehmen");
    EXPECT_EQ(selected_in(program), "Deutsch");
    EXPECT_FALSE(program.apply_enabled());
    EXPECT_THAT(settings_key::read(), IsEmpty());
    program.control(id::auto_discovery).click();
    program.control(id::apply).click();
    EXPECT_THAT(settings_key::read(), Contains(Pair(u"language", text(u"de")))) << "stored with the next change";
    EXPECT_EQ(program.close(), 0U);

    settings_key::write(u"language", text(u"en"));
    EXPECT_EQ(apply_text(utility().window()), "Apply") << "a choice is not overruled";
}

} // namespace
