#include "app/access_command.h"
#include "app/config_dialog.h"
#include "app/messages.h"
#include "base/utf.h"
#include "base/win32_error.h"
#include "localisation/string_tables.h"
#include "resource.h"
#include "security/scripted_editor.h"
#include "support/cases.h"
#include "support/scratch_hive.h"
#include "ui/controls.h"
#include "ui/looks.h"
#include "ui/message_box_ids.h"
#include "ui/modal_loop.h"

#include <commctrl.h>
#include <gmock/gmock.h>

#include <array>
#include <optional>
#include <vector>

namespace {

using namespace tidelink;
using support::editor_that_sets;
using support::list_of;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Answers the message boxes of this thread, one after the other, and keeps what they said.
class box_answers {
public:
    explicit box_answers(std::vector<int> buttons) : buttons_(std::move(buttons)) { await_next(); }

    std::vector<std::string> said;

private:
    void await_next()
    {
        next_.emplace([this](HWND box) {
            const int button = said.size() < buttons_.size() ? buttons_[said.size()] : IDCANCEL;
            said.push_back(girder::to_utf8(girder::ui::window_text(::GetDlgItem(box, IDC_MESSAGE_TEXT))));
            await_next();
            ::SendMessageW(box, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), 0);
        });
    }

    std::vector<int> buttons_;
    std::optional<support::in_modal_loop> next_;
};

struct words_case {
    const char* name;
    const char16_t* sddl;
    const char* words;
};

class access_words_test : public testing::TestWithParam<words_case> {};

TEST_P(access_words_test, say_who_can_connect)
{
    tidelink::initialise(u"", u"en");
    EXPECT_EQ(girder::to_utf8(access_words(GetParam().sddl)), GetParam().words);
}

INSTANTIATE_TEST_SUITE_P(descriptors, access_words_test,
                         testing::ValuesIn(std::to_array<words_case>({
                             {"everyone", u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)", "Everyone"},
                             {"no_list", u"O:BA", "Everyone"},
                             {"everyone_but_two", u"D:(D;;GA;;;BU)(D;;GA;;;BG)(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)",
                              "Everyone, 2 denied"},
                             {"one", u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;BA)", "1 account or group"},
                             {"one_but_another", u"D:(D;;GA;;;BU)(A;;0xc0100000;;;BA)", "1 account or group, 1 denied"},
                             {"three", u"D:(A;;GA;;;BA)(A;;GA;;;BU)(A;;GA;;;BG)", "3 accounts or groups"},
                             {"three_but_another", u"D:(A;;GA;;;BA)(A;;GA;;;BU)(D;;GA;;;AN)(A;;GA;;;BG)",
                              "3 accounts or groups, 1 denied"},
                             {"the_service_alone", u"D:(A;;0xc0100004;;;SU)(D;;0xc0000000;;;WD)",
                              "Nobody but the service. Warning: no client can connect."},
                             {"denied_first", u"D:(A;;0xc0100004;;;SU)(D;;0xc0100000;;;WD)(A;;0xc0100000;;;BA)",
                              "Nobody but the service. Warning: everyone is denied before anyone is allowed."},
                             {"an_empty_list", u"D:", "Nobody, not even the service. Warning: no client can connect."},
                             {"unreadable", u"garbage", "Warning: the stored access list cannot be read."},
                         })),
                         support::name_of_row);

constexpr std::u16string_view users_alone = u"D:(A;;0xc0100000;;;AU)";

/// The main dialog over what is stored, with a scripted editor behind its Security button.
class access_command_test : public testing::Test {
protected:
    void open(std::u16string_view stored)
    {
        constexpr INITCOMMONCONTROLSEX classes{.dwSize = sizeof(INITCOMMONCONTROLSEX), .dwICC = ICC_LISTVIEW_CLASSES};
        ::InitCommonControlsEx(&classes);
        ServerSettings settings = DefaultServerSettings();
        settings.securityDescriptor = stored;
        SaveSettings(settings);
        dialog_.emplace(thread_, restart_);
        dialog_->create();
        set_editor(support::scripted_editor([](support::open_editor&) { return true; }));
    }

    void set_editor(access_editor editor)
    {
        dialog_->use_access_editor([this, editor = std::move(editor)](HWND owner, ISecurityInformation& information) {
            EXPECT_EQ(owner, dialog_->window());
            ++opened_;
            return editor(owner, information);
        });
    }

    void press(int button) { ::SendMessageW(dialog_->window(), WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), 0); }
    bool dirty() const { return ::IsWindowEnabled(dialog_->control(IDC_APPLY)) != FALSE; }
    std::string words() const { return girder::to_utf8(girder::ui::window_text(dialog_->control(IDC_ACCESS_WORDS))); }

    static std::u16string stored() { return LoadSettings().securityDescriptor; }
    static std::optional<access_list> stored_list() { return entries_of(ParseDescriptor(stored())); }

    support::scratch_hive hive_;
    girder::ui_thread thread_{messages().ui_return};
    restart_request restart_;
    std::optional<ConfigDialog> dialog_;
    int opened_ = 0;
};

TEST_F(access_command_test, cancel_changes_and_asks_nothing)
{
    constexpr std::u16string_view with_a_hidden_entry = u"D:(A;;0xc0100004;;;BA)(A;;0xc0100000;;;AU)";
    open(with_a_hidden_entry);
    set_editor(support::scripted_editor([](support::open_editor& editor) {
        EXPECT_EQ(editor.title, u"Tidelink Port Server Security");
        EXPECT_EQ(editor.right, u"Connect to server");
        editor.apply("");
        return false;
    }));
    const box_answers answers({});
    press(IDC_SECURITY);
    EXPECT_EQ(opened_, 1);
    EXPECT_THAT(answers.said, IsEmpty());
    EXPECT_FALSE(dirty());
    EXPECT_EQ(words(), "2 accounts or groups");
    press(IDC_APPLY);
    EXPECT_EQ(stored(), with_a_hidden_entry);
}

TEST_F(access_command_test, ok_without_a_change_is_a_change_that_apply_stores_with_the_service_first)
{
    open(users_alone);
    press(IDC_SECURITY);
    EXPECT_TRUE(dirty());
    EXPECT_EQ(stored(), users_alone) << "not before Apply";
    press(IDC_APPLY);
    EXPECT_FALSE(dirty());
    EXPECT_EQ(stored_list(), list_of("own +AU"));
}

TEST_F(access_command_test, the_words_follow_each_edit_and_the_next_one_starts_from_the_last)
{
    open(users_alone);
    set_editor(editor_that_sets("-u7 +AU +u8"));
    press(IDC_SECURITY);
    EXPECT_EQ(words(), "2 accounts or groups, 1 denied");
    set_editor(support::scripted_editor([](support::open_editor& editor) {
        EXPECT_EQ(editor.shown, list_of("-u7 +AU +u8", support::in_editor));
        editor.apply("");
        return true;
    }));
    press(IDC_SECURITY);
    EXPECT_THAT(words(), HasSubstr("Warning"));
    press(IDC_APPLY);
    EXPECT_EQ(stored_list(), list_of("own closed"));
}

TEST_F(access_command_test, an_editor_that_fails_is_reported_and_changes_nothing)
{
    open(users_alone);
    set_editor([](HWND, ISecurityInformation&) -> bool { girder::throw_win32(ERROR_MOD_NOT_FOUND, "LoadLibraryExW"); });
    const box_answers answers({IDOK});
    press(IDC_SECURITY);
    EXPECT_THAT(answers.said, ElementsAre(HasSubstr("0x0000007e")));
    EXPECT_FALSE(dirty());
    press(IDC_APPLY);
    EXPECT_EQ(stored(), users_alone);
}

TEST_F(access_command_test, an_unreadable_list_stays_until_the_default_is_wanted)
{
    open(u"garbage");
    {
        const box_answers answers({IDOK, IDNO});
        press(IDC_SECURITY);
        EXPECT_THAT(answers.said, ElementsAre(HasSubstr("Error "), "Start from the default list?"));
    }
    EXPECT_EQ(opened_, 0);
    EXPECT_FALSE(dirty());
    press(IDC_AUTO_DISCOVERY);
    press(IDC_APPLY);
    EXPECT_EQ(stored(), u"garbage");

    set_editor(support::scripted_editor([](support::open_editor& editor) {
        EXPECT_EQ(editor.shown, list_of("+WD", support::in_editor));
        return true;
    }));
    const box_answers answers({IDOK, IDYES});
    press(IDC_SECURITY);
    EXPECT_EQ(answers.said.size(), 2U);
    EXPECT_EQ(words(), "Everyone");
    press(IDC_APPLY);
    EXPECT_EQ(stored_list(), list_of("own +WD"));
}

TEST_F(access_command_test, losing_entries_that_the_editor_cannot_show_is_asked_once)
{
    constexpr std::u16string_view with_hidden_entries =
        u"D:(A;;0xc0100004;;;SU)(A;;0xc0100004;;;BA)(A;;0xc0100004;;;BU)(A;;0xc0100000;;;WD)S:(AU;SAFA;GA;;;WD)";
    open(with_hidden_entries);
    {
        const box_answers answers({IDNO});
        press(IDC_SECURITY);
        EXPECT_THAT(answers.said, ElementsAre(HasSubstr(": 3.")));
    }
    EXPECT_FALSE(dirty());
    press(IDC_AUTO_DISCOVERY);
    press(IDC_APPLY);
    EXPECT_EQ(stored(), with_hidden_entries);
    {
        const box_answers answers({IDYES});
        press(IDC_SECURITY);
        EXPECT_EQ(answers.said.size(), 1U);
    }
    const box_answers no_answers({});
    press(IDC_SECURITY);
    EXPECT_THAT(no_answers.said, IsEmpty());
    press(IDC_APPLY);
    EXPECT_EQ(stored_list(), list_of("own +WD"));
}

TEST_F(access_command_test, nothing_is_asked_once_the_window_was_closed_under_the_editor)
{
    open(u"D:(A;;0xc0100004;;;AU)");
    set_editor([](HWND owner, ISecurityInformation&) {
        ::SendMessageW(owner, WM_CLOSE, 0, 0);
        MSG quit{};
        EXPECT_TRUE(::PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
        return true;
    });
    const box_answers answers({});
    press(IDC_SECURITY);
    EXPECT_THAT(answers.said, IsEmpty());
}

TEST_F(access_command_test, the_longest_warning_is_shown_whole_at_every_dpi)
{
    open(users_alone);
    set_editor(editor_that_sets("-WD +AU"));
    press(IDC_SECURITY);
    const HWND line = dialog_->control(IDC_ACCESS_WORDS);
    EXPECT_THAT(words(), HasSubstr("denied before"));
    for (const UINT dpi : {96U, 144U, 192U}) {
        RECT suggested = support::place_of(dialog_->window());
        ::SendMessageW(dialog_->window(), WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested));
        support::expect_tidy(dialog_->window(), IDC_SETTINGS_FRAME);
        const SIZE room = support::size_of(line);
        EXPECT_GE(room.cy, support::drawn_size(line, DT_WORDBREAK | DT_EDITCONTROL, room.cx).cy) << dpi;
    }
}

} // namespace
