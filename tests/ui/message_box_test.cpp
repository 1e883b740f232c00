#include "looks.h"
#include "modal_loop.h"
#include "ui/message_box.h"
#include "ui/message_box_ids.h"
#include "ui/rich_view.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <span>
#include <utility>
#include <vector>

namespace girder::ui {
namespace {

using support::in_modal_loop;
using support::place_of;

struct input {
    UINT message;
    WPARAM wparam;
    LPARAM lparam = 0;
};

constexpr input enter{WM_KEYDOWN, VK_RETURN};
constexpr input escape{WM_KEYDOWN, VK_ESCAPE};
constexpr input alt_y{WM_SYSCHAR, 'y', LPARAM{1} << 29};
constexpr input alt_d{WM_SYSCHAR, 'd', LPARAM{1} << 29};
constexpr input close_box{WM_SYSCOMMAND, SC_CLOSE};
constexpr input close{WM_CLOSE, 0};

TEST(message_box_test, shows_its_buttons_and_answers_by_key_mnemonic_and_close_box)
{
    static constexpr message_button every_button[] = {{IDCONTINUE, u"&Continue all the same"},
                                                      {IDTRYAGAIN, u"&Try Again"},
                                                      {IDIGNORE, u"&Ignore"},
                                                      {IDCANCEL, u"Cancel"},
                                                      {IDRETRY, u"&Retry"},
                                                      {IDABORT, u"&Abort"},
                                                      {IDNO, u"&No"},
                                                      {IDYES, u"&Yes"},
                                                      {IDOK, u"OK"}};
    constexpr std::span all(every_button);
    constexpr std::span cancel_retry = all.subspan(3, 2);
    constexpr std::span no_yes = all.subspan(6, 2);
    const struct {
        const char* name;
        std::span<const message_button> buttons;
        int escape_button;
        std::vector<input> posted;
        int button;
        bool checked;
        bool can_be_closed;
    } cases[] = {
        {"enter_presses_the_first", no_yes, 0, {enter}, IDNO, false, false},
        {"mnemonic_of_the_check_box", no_yes, 0, {alt_d, enter}, IDNO, true, false},
        {"escape_presses_cancel", all, 0, {escape}, IDCANCEL, false, true},
        {"escape_presses_the_only_button", all.last(1), 0, {escape}, IDOK, false, true},
        {"escape_presses_the_named_button", no_yes, IDYES, {escape}, IDYES, false, true},
        {"escape_does_nothing_without_a_button_for_it", no_yes, 0, {escape, close, alt_y}, IDYES, false, false},
        {"close_box_is_escape", cancel_retry, 0, {close_box}, IDCANCEL, false, true},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const in_modal_loop posting([&row](HWND dialog) {
            std::vector<int> shown;
            std::set<LONG> widths;
            LONG right = 0;
            for (const HWND child : support::children_of(dialog)) {
                const int id = ::GetDlgCtrlID(child);
                if (id == IDC_MESSAGE_TEXT || id == IDC_MESSAGE_ICON || id == IDC_MESSAGE_DO_NOT_SHOW)
                    continue;
                shown.push_back(id);
                widths.insert(support::size_of(child).cx);
                EXPECT_GT(place_of(child).left, std::exchange(right, place_of(child).right));
            }
            EXPECT_TRUE(std::ranges::equal(shown, row.buttons, {}, {}, &message_button::id));
            EXPECT_EQ(widths.size(), 1U);
            const UINT close_item = ::GetMenuState(::GetSystemMenu(dialog, FALSE), SC_CLOSE, MF_BYCOMMAND);
            EXPECT_EQ((close_item & MF_GRAYED) == 0, row.can_be_closed);
            for (const auto& [message, wparam, lparam] : row.posted) {
                const bool is_key = message >= WM_KEYFIRST && message <= WM_KEYLAST;
                ::PostMessageW(is_key ? ::GetFocus() : dialog, message, wparam, lparam);
            }
        });
        const message_answer answer =
            show_message_box(nullptr, {.title = u"Title",
                                       .text = u"Text",
                                       .icon = message_icon::warning,
                                       .buttons = row.buttons,
                                       .escape_button = row.escape_button,
                                       .check_box_text = u"&Do not display this message anymore"});
        EXPECT_EQ(answer.button, row.button);
        EXPECT_EQ(answer.checked, row.checked);
    }
}

TEST(message_box_test, control_c_copies_the_whole_message)
{
    constexpr message_button buttons[] = {{IDYES, u"&Yes"}, {IDNO, u"&No"}, {IDTRYAGAIN, u"&Try Again"}};
    const in_modal_loop copying([](HWND dialog) {
        BYTE keys[256]{};
        keys[VK_CONTROL] = 0x80;
        ::SetKeyboardState(keys);
        ::SendMessageW(::GetFocus(), WM_KEYDOWN, 'C', 0);
        keys[VK_CONTROL] = 0;
        ::SetKeyboardState(keys);
        ::PostMessageW(dialog, WM_COMMAND, IDNO, 0);
    });
    show_message_box(nullptr, {.title = u"Title", .text = u"Fish & chips?\nReally?", .buttons = buttons});
    ASSERT_TRUE(::OpenClipboard(nullptr));
    const HANDLE copied = ::GetClipboardData(CF_UNICODETEXT);
    ASSERT_TRUE(copied);
    const std::u16string copy = static_cast<const char16_t*>(::GlobalLock(copied));
    ::CloseClipboard();
    EXPECT_EQ(copy, u"---------------------------\r\n"
                    u"Title\r\n"
                    u"---------------------------\r\n"
                    u"Fish & chips?\nReally?\r\n"
                    u"---------------------------\r\n"
                    u"Yes   No   Try Again   \r\n"
                    u"---------------------------\r\n");
}

TEST(message_box_test, lies_on_the_screen_with_its_text_whole_where_there_is_room)
{
    for (const auto& [text, is_whole] :
         {std::pair(std::u16string(480, u'x'), true), {std::u16string(500, u'\n'), false}}) {
        SCOPED_TRACE(is_whole);
        const in_modal_loop looking([is_whole](HWND dialog) {
            const HWND view = ::GetDlgItem(dialog, IDC_MESSAGE_TEXT);
            const SIZE own = support::size_of(view);
            const extent needed = rich_view_extent(view, own.cx);
            EXPECT_LE(needed.width, own.cx);
            EXPECT_EQ(needed.height <= own.cy, is_whole);
            support::expect_tidy(dialog);
            const RECT work = support::work_area();
            const RECT window = place_of(dialog);
            EXPECT_TRUE(support::is_inside(window, work));
            EXPECT_NEAR((window.left + window.right) / 2, (work.left + work.right) / 2, 1);
            ::PostMessageW(dialog, WM_COMMAND, IDYES, 0);
        });
        constexpr message_button buttons[] = {{IDYES, u"&Yes"}, {IDNO, u"&No"}};
        show_message_box(nullptr, {.title = u"Title", .text = text, .icon = message_icon::error, .buttons = buttons});
    }
}

} // namespace
} // namespace girder::ui
