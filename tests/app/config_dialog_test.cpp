#include "app/config_dialog.h"
#include "app/messages.h"
#include "app/restart_request.h"
#include "async/ui_thread.h"
#include "resource.h"
#include "support/accessible.h"
#include "support/scratch_hive.h"
#include "ui/controls.h"

#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

namespace {

using namespace tidelink;

class config_dialog_test : public testing::Test {
protected:
    void SetUp() override
    {
        constexpr INITCOMMONCONTROLSEX classes{.dwSize = sizeof(INITCOMMONCONTROLSEX), .dwICC = ICC_LISTVIEW_CLASSES};
        ::InitCommonControlsEx(&classes);
        dialog_.create();
    }

    support::scratch_hive hive_;
    girder::ui_thread thread_{messages().ui_return};
    restart_request restart_;
    ConfigDialog dialog_{thread_, restart_};
};

TEST_F(config_dialog_test, lists_and_the_status_are_named_after_their_labels)
{
    EXPECT_EQ(support::accessible_name(dialog_.control(IDC_PORTS)), u"Ports");
    EXPECT_EQ(support::accessible_name(dialog_.control(IDC_LANGUAGE)), u"Language");
    EXPECT_EQ(support::accessible_name(dialog_.control(IDC_STATUS)), u"Status:");
}

TEST_F(config_dialog_test, the_service_is_shown_before_the_window_is)
{
    EXPECT_NE(girder::ui::window_text(dialog_.control(IDC_STATUS)), u"");
    EXPECT_EQ(girder::ui::window_text(dialog_.control(IDC_START)), u"&Install");
    EXPECT_FALSE(::IsWindowEnabled(dialog_.control(IDC_STOP)));
}

TEST_F(config_dialog_test, a_command_by_the_registered_message_answers_1)
{
    EXPECT_EQ(::SendMessageW(dialog_.window(), WM_COMMAND, MAKEWPARAM(IDC_AUTO_DISCOVERY, BN_CLICKED), 0), 0);
    EXPECT_TRUE(::IsWindowEnabled(dialog_.control(IDC_APPLY)));
    EXPECT_EQ(
        ::SendMessageW(dialog_.window(), messages().process_command, MAKEWPARAM(IDC_SHARE_SELECTED, BN_CLICKED), 0), 1);
    EXPECT_EQ(::SendMessageW(dialog_.window(), messages().process_command, MAKEWPARAM(IDC_STATUS, 99), 0), 0)
        << "not handled";
}

TEST_F(config_dialog_test, with_neither_radio_button_checked_no_port_is_listed)
{
    girder::ui::check_list::append(dialog_.control(IDC_PORTS), u"Port", 5, true);
    girder::ui::set_checked_button(dialog_.control(IDC_SHARE_ALL), false);
    girder::ui::set_checked_button(dialog_.control(IDC_SHARE_SELECTED), false);
    ::SendMessageW(dialog_.window(), WM_COMMAND, MAKEWPARAM(IDC_AUTO_DISCOVERY, BN_CLICKED), 0);
    ::SendMessageW(dialog_.window(), WM_COMMAND, MAKEWPARAM(IDC_APPLY, BN_CLICKED), 0);
    EXPECT_TRUE(LoadSettings().sharedPorts.empty());
    EXPECT_FALSE(::IsWindowEnabled(dialog_.control(IDC_APPLY)));
}

} // namespace
