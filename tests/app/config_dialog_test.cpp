#include "app/config_dialog.h"
#include "app/messages.h"
#include "app/restart_request.h"
#include "async/ui_thread.h"
#include "resource.h"
#include "support/scratch_hive.h"
#include "ui/controls.h"
#include "ui/looks.h"

#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

namespace {

using namespace tidelink;

/// The text made about 40 % longer by accented letters, as translations are.
std::u16string longer(std::u16string text)
{
    const std::size_t extra = text.size() * 2 / 5 + 1;
    for (std::size_t i = 0; i < extra; ++i)
        text += i % 5 == 0 ? u' ' : u'ë';
    return text;
}

class config_dialog_test : public testing::Test {
protected:
    void SetUp() override
    {
        constexpr INITCOMMONCONTROLSEX classes{.dwSize = sizeof(INITCOMMONCONTROLSEX), .dwICC = ICC_LISTVIEW_CLASSES};
        ::InitCommonControlsEx(&classes);
        dialog_.create();
    }

    void change_dpi(UINT dpi)
    {
        RECT suggested = support::place_of(dialog_.window());
        ::SendMessageW(dialog_.window(), WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested));
    }

    support::scratch_hive hive_;
    girder::ui_thread thread_{messages().ui_return};
    restart_request restart_;
    ConfigDialog dialog_{thread_, restart_};
};

TEST_F(config_dialog_test, longer_texts_fit_at_every_dpi)
{
    for (const HWND child : support::children_of(dialog_.window())) {
        const int id = ::GetDlgCtrlID(child);
        if (id != IDC_STATUS && id != IDC_PORTS && id != IDC_LANGUAGE)
            girder::ui::set_window_text(child, longer(girder::ui::window_text(child)));
    }
    for (const UINT dpi : {122U, 144U, 192U, 96U}) {
        change_dpi(dpi);
        support::expect_tidy(dialog_.window(), IDC_SETTINGS_FRAME);
        for (const int id : {IDC_START, IDC_STOP, IDC_SHARE_ALL, IDC_SHARE_SELECTED, IDC_AUTO_DISCOVERY, IDC_SECURITY,
                             IDC_ABOUT, IDOK, IDCANCEL, IDC_APPLY}) {
            SIZE ideal{};
            ::SendMessageW(dialog_.control(id), BCM_GETIDEALSIZE, 0, reinterpret_cast<LPARAM>(&ideal));
            EXPECT_GE(support::size_of(dialog_.control(id)).cx, ideal.cx) << id << " at " << dpi;
            EXPECT_GE(support::size_of(dialog_.control(id)).cy, support::drawn_size(dialog_.control(id), 0).cy)
                << id << " at " << dpi;
        }
    }
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
