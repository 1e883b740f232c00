#include "app/access_command.h"
#include "app/config_dialog.h"
#include "app/messages.h"
#include "base/utf.h"
#include "base/win32_error.h"
#include "dialog_environment.h"
#include "resource.h"
#include "security/scripted_editor.h"
#include "ui/controls.h"
#include "ui/message_box_ids.h"
#include "ui/modal_loop.h"

#include <gmock/gmock.h>

#include <optional>
#include <vector>

namespace {

using namespace tidelink;
using girder::ui::window_text;
using support::list_of;
using testing::ElementsAre;
using testing::HasSubstr;

/// The main dialog over what is stored, with a scripted editor behind its Security button.
class config_dialog_test : public testing::Test, support::dialog_environment {
protected:
    void open(std::u16string_view stored)
    {
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
    /// Answers the message boxes one after the other, at the end by Cancel. \return what they said
    std::vector<std::string> press_security(const std::vector<int>& answers)
    {
        std::vector<std::string> said;
        std::optional<support::in_modal_loop> next;
        const std::function<void(HWND)> answer = [&](HWND box) {
            const int button = said.size() < answers.size() ? answers[said.size()] : IDCANCEL;
            said.push_back(girder::to_utf8(window_text(::GetDlgItem(box, IDC_MESSAGE_TEXT))));
            next.emplace(answer);
            ::SendMessageW(box, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), 0);
        };
        next.emplace(answer);
        press(IDC_SECURITY);
        return said;
    }
    bool dirty() const { return ::IsWindowEnabled(dialog_->control(IDC_APPLY)) != FALSE; }
    std::string words() const { return girder::to_utf8(window_text(dialog_->control(IDC_ACCESS_WORDS))); }

    static std::u16string stored() { return LoadSettings().securityDescriptor; }
    static std::optional<access_list> stored_list() { return entries_of(ParseDescriptor(stored())); }

    girder::ui_thread thread_{messages().ui_return};
    restart_request restart_;
    std::optional<ConfigDialog> dialog_;
    int opened_ = 0;
};

TEST_F(config_dialog_test, a_command_by_the_registered_message_answers_1)
{
    open(u"D:");
    const WPARAM command = MAKEWPARAM(IDC_AUTO_DISCOVERY, BN_CLICKED);
    EXPECT_EQ(::SendMessageW(dialog_->window(), messages().process_command, command, 0), 1);
    EXPECT_TRUE(dirty());
    EXPECT_EQ(::SendMessageW(dialog_->window(), WM_COMMAND, command, 0), 0);
}

TEST_F(config_dialog_test, who_can_connect_is_said_in_words)
{
    for (const auto& [sddl, words] : {
             std::pair(u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)", "Everyone"),
             {u"D:(D;;GA;;;BU)(D;;GA;;;BG)(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)", "Everyone, 2 denied"},
             {u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;BA)", "1 account or group"},
             {u"D:(D;;GA;;;BU)(A;;0xc0100000;;;BA)", "1 account or group, 1 denied"},
             {u"D:(A;;GA;;;BA)(A;;GA;;;BU)(A;;GA;;;BG)", "3 accounts or groups"},
             {u"D:(A;;GA;;;BA)(A;;GA;;;BU)(D;;GA;;;AN)(A;;GA;;;BG)", "3 accounts or groups, 1 denied"},
             {u"D:(A;;0xc0100004;;;SU)(D;;0xc0000000;;;WD)", "Nobody but the service. Warning: no client can connect."},
             {u"D:(A;;0xc0100004;;;SU)(D;;0xc0100000;;;WD)(A;;0xc0100000;;;BA)",
              "Nobody but the service. Warning: everyone is denied before anyone is allowed."},
             {u"D:", "Nobody, not even the service. Warning: no client can connect."},
             {u"garbage", "Warning: the stored access list cannot be read."},
         })
        EXPECT_EQ(girder::to_utf8(access_words(sddl)), words);
}

TEST_F(config_dialog_test, cancel_in_the_editor_or_its_failure_changes_nothing)
{
    constexpr std::u16string_view with_a_hidden_entry = u"D:(A;;0xc0100004;;;BA)(A;;0xc0100000;;;AU)";
    open(with_a_hidden_entry);
    set_editor(support::scripted_editor([](support::open_editor& editor) {
        EXPECT_EQ(editor.title, u"Tidelink Port Server Security");
        EXPECT_EQ(editor.right, u"Connect to server");
        editor.apply("");
        return false;
    }));
    EXPECT_THAT(press_security({}), ElementsAre());
    set_editor([](HWND, ISecurityInformation&) -> bool { girder::throw_win32(ERROR_MOD_NOT_FOUND, "LoadLibraryExW"); });
    EXPECT_THAT(press_security({IDOK}), ElementsAre(HasSubstr("0x0000007e")));
    EXPECT_EQ(opened_, 2);
    EXPECT_FALSE(dirty());
    EXPECT_EQ(words(), "2 accounts or groups");
    press(IDC_APPLY);
    EXPECT_EQ(stored(), with_a_hidden_entry);
}

TEST_F(config_dialog_test, the_words_follow_each_edit_and_the_next_one_starts_from_the_last)
{
    open(u"D:(A;;0xc0100000;;;AU)");
    set_editor(support::scripted_editor([](support::open_editor& editor) {
        editor.apply("-u7 +AU +u8");
        return true;
    }));
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

TEST_F(config_dialog_test, an_unreadable_list_stays_until_the_default_is_wanted)
{
    open(u"garbage");
    EXPECT_THAT(press_security({IDOK, IDNO}), ElementsAre(HasSubstr("Error "), "Start from the default list?"));
    EXPECT_EQ(opened_, 0);
    EXPECT_FALSE(dirty());
    press(IDC_AUTO_DISCOVERY);
    press(IDC_APPLY);
    EXPECT_EQ(stored(), u"garbage");

    set_editor(support::scripted_editor([](support::open_editor& editor) {
        EXPECT_EQ(editor.shown, list_of("+WD", support::in_editor));
        return true;
    }));
    EXPECT_EQ(press_security({IDOK, IDYES}).size(), 2U);
    EXPECT_EQ(words(), "Everyone");
    press(IDC_APPLY);
    EXPECT_EQ(stored_list(), list_of("own +WD"));
}

TEST_F(config_dialog_test, losing_entries_that_the_editor_cannot_show_is_asked_once)
{
    constexpr std::u16string_view with_hidden_entries =
        u"D:(A;;0xc0100004;;;SU)(A;;0xc0100004;;;BA)(A;;0xc0100004;;;BU)(A;;0xc0100000;;;WD)S:(AU;SAFA;GA;;;WD)";
    open(with_hidden_entries);
    EXPECT_THAT(press_security({IDNO}), ElementsAre(HasSubstr(": 3.")));
    EXPECT_FALSE(dirty());
    press(IDC_AUTO_DISCOVERY);
    press(IDC_APPLY);
    EXPECT_EQ(stored(), with_hidden_entries);
    EXPECT_EQ(press_security({IDYES}).size(), 1U);
    EXPECT_THAT(press_security({}), ElementsAre());
    press(IDC_APPLY);
    EXPECT_EQ(stored_list(), list_of("own +WD"));
}

} // namespace
