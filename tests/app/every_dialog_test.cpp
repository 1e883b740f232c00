#include "app/com_apartment.h"
#include "every_dialog.h"
#include "support/accessible.h"
#include "support/cases.h"
#include "support/handle_marks.h"
#include "support/scratch_hive.h"
#include "ui/controls.h"
#include "ui/looks.h"

#include <commctrl.h>
#include <gtest/gtest.h>

namespace {

using namespace tidelink;

class every_dialog_test : public testing::TestWithParam<every_dialog::entry> {
protected:
    void SetUp() override
    {
        constexpr INITCOMMONCONTROLSEX classes{.dwSize = sizeof(INITCOMMONCONTROLSEX),
                                               .dwICC = ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS};
        ::InitCommonControlsEx(&classes);
        tidelink::initialise({}, u"en");
    }

private:
    com_apartment com_;
    support::scratch_hive hive_;
};

TEST_P(every_dialog_test, tells_a_screen_reader_name_and_role_of_all_that_takes_the_keyboard)
{
    GetParam().show([](HWND dialog) {
        EXPECT_FALSE(girder::ui::window_text(dialog).empty());
        for (const HWND control : support::children_of(dialog)) {
            if (!support::takes_keyboard(control))
                continue;
            EXPECT_FALSE(support::accessible_name(control).empty()) << ::GetDlgCtrlID(control);
            EXPECT_NE(support::accessible_role(control), 0) << ::GetDlgCtrlID(control);
        }
        EXPECT_TRUE(::GetFocus() == dialog || ::IsChild(dialog, ::GetFocus()));
    });
}

TEST_P(every_dialog_test, openings_leave_no_handles)
{
    support::expect_no_lost_handles([] {
        GetParam().show([](HWND dialog) {
            ::RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        });
    });
}

// The combinations of buttons differ in their texts alone.
INSTANTIATE_TEST_SUITE_P(dialog, every_dialog_test, testing::ValuesIn(std::span(every_dialog::all).first<5>()),
                         support::name_of_row);

} // namespace
