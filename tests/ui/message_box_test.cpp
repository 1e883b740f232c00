#include "looks.h"
#include "modal_loop.h"
#include "ui/message_box.h"
#include "ui/message_box_ids.h"
#include "ui/rich_view.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

namespace girder::ui {
namespace {

using support::in_modal_loop;
using support::place_of;

constexpr message_button every_button[] = {{IDOK, u"OK"},
                                           {IDYES, u"&Yes"},
                                           {IDNO, u"&No"},
                                           {IDABORT, u"&Abort"},
                                           {IDRETRY, u"&Retry"},
                                           {IDCANCEL, u"Cancel"},
                                           {IDIGNORE, u"&Ignore"},
                                           {IDTRYAGAIN, u"&Try Again"},
                                           {IDCONTINUE, u"&Continue all the same"}};

std::vector<message_button> buttons_of(const std::vector<int>& ids)
{
    std::vector<message_button> chosen;
    for (const int id : ids)
        chosen.push_back(*std::ranges::find(every_button, id, &message_button::id));
    return chosen;
}

/// Exactly these buttons, from left to right and in the order of the Tab key, all as wide as the widest.
void expect_buttons(HWND dialog, const std::vector<int>& ids)
{
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
    EXPECT_EQ(shown, ids);
    EXPECT_EQ(widths.size(), 1U);
}

struct input {
    UINT message;
    WPARAM wparam;
    LPARAM lparam = 0;
};

constexpr input enter{WM_KEYDOWN, VK_RETURN};
constexpr input tab{WM_KEYDOWN, VK_TAB};
constexpr input escape{WM_KEYDOWN, VK_ESCAPE};
constexpr input space{WM_KEYDOWN, VK_SPACE};
constexpr input space_up{WM_KEYUP, VK_SPACE, LPARAM{0xC0000000}};
constexpr input alt_n{WM_SYSCHAR, 'n', LPARAM{1} << 29};
constexpr input alt_d{WM_SYSCHAR, 'd', LPARAM{1} << 29};
constexpr input close_box{WM_SYSCOMMAND, SC_CLOSE};
constexpr input close{WM_CLOSE, 0};

TEST(message_box_test, shows_its_buttons_and_answers_by_key_mnemonic_and_close_box)
{
    const struct {
        const char* name;
        std::vector<int> buttons;
        int default_button;
        int escape_button;
        std::vector<input> posted;
        int button;
        bool checked = false;
        bool can_be_closed = false;
    } cases[] = {
        {"enter_presses_the_first", {IDYES, IDNO}, 0, 0, {enter}, IDYES},
        {"enter_presses_the_default", {IDYES, IDNO}, IDNO, 0, {enter}, IDNO},
        {"tab_moves_on", {IDABORT, IDRETRY, IDIGNORE}, 0, 0, {tab, enter}, IDRETRY},
        {"space_presses_the_focused", {IDYES, IDNO}, IDNO, 0, {space, space_up}, IDNO},
        {"mnemonic", {IDYES, IDNO}, 0, 0, {alt_n}, IDNO},
        {"mnemonic_of_the_check_box", {IDYES, IDNO}, 0, 0, {alt_d, enter}, IDYES, true},
        {"escape_presses_cancel", {IDYES, IDNO, IDCANCEL}, 0, 0, {escape}, IDCANCEL, false, true},
        {"escape_presses_the_only_button", {IDOK}, 0, 0, {escape}, IDOK, false, true},
        {"escape_presses_the_named_button", {IDYES, IDNO}, 0, IDNO, {escape}, IDNO, false, true},
        {"escape_does_nothing_without_a_button_for_it", {IDYES, IDNO}, 0, 0, {escape, close, alt_n}, IDNO},
        {"all_buttons",
         {IDCONTINUE, IDTRYAGAIN, IDIGNORE, IDCANCEL, IDRETRY, IDABORT, IDNO, IDYES, IDOK},
         0,
         0,
         {enter},
         IDCONTINUE,
         false,
         true},
        {"close_box_is_escape", {IDRETRY, IDCANCEL}, 0, 0, {close_box}, IDCANCEL, false, true},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const in_modal_loop posting([&row](HWND dialog) {
            expect_buttons(dialog, row.buttons);
            const UINT close_item = ::GetMenuState(::GetSystemMenu(dialog, FALSE), SC_CLOSE, MF_BYCOMMAND);
            EXPECT_EQ((close_item & MF_GRAYED) == 0, row.can_be_closed);
            for (const auto& [message, wparam, lparam] : row.posted) {
                const bool is_key = message >= WM_KEYFIRST && message <= WM_KEYLAST;
                ::PostMessageW(is_key ? ::GetFocus() : dialog, message, wparam, lparam);
            }
        });
        const std::vector<message_button> buttons = buttons_of(row.buttons);
        const message_answer answer =
            show_message_box(nullptr, {.title = u"Title",
                                       .text = u"Text",
                                       .icon = message_icon::warning,
                                       .buttons = buttons,
                                       .default_button = row.default_button,
                                       .escape_button = row.escape_button,
                                       .check_box_text = u"&Do not display this message anymore"});
        EXPECT_EQ(answer.button, row.button);
        EXPECT_EQ(answer.checked, row.checked);
    }
}

std::u16string clipboard_text()
{
    if (!::OpenClipboard(nullptr))
        return u"cannot be opened";
    const HANDLE data = ::GetClipboardData(CF_UNICODETEXT);
    const std::u16string text = data ? static_cast<const char16_t*>(::GlobalLock(data)) : u"";
    ::CloseClipboard();
    return text;
}

TEST(message_box_test, control_c_copies_the_whole_message)
{
    const auto buttons = buttons_of({IDYES, IDNO, IDTRYAGAIN});
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
    EXPECT_EQ(clipboard_text(), u"---------------------------\r\n"
                                u"Title\r\n"
                                u"---------------------------\r\n"
                                u"Fish & chips?\nReally?\r\n"
                                u"---------------------------\r\n"
                                u"Yes   No   Try Again   \r\n"
                                u"---------------------------\r\n");
}

std::u16string repeated(std::u16string_view part, int times)
{
    std::u16string all;
    for (int i = 0; i < times; ++i)
        all += part;
    return all;
}

TEST(message_box_test, lies_on_the_screen_with_its_text_whole_where_there_is_room)
{
    const struct {
        const char* name;
        std::u16string text;
        bool is_whole = true;
    } cases[] = {
        {"empty", u""},
        {"one_long_word", repeated(u"0123456789abcdef", 30)},
        {"long_text", repeated(u"W\u00E4hrend der Ausf\u00FChrung trat ein Fehler auf. ", 60)},
        {"longer_than_the_screen", repeated(u"line\n", 500), false},
    };
    const auto buttons = buttons_of({IDYES, IDNO});
    for (const auto& [name, text, is_whole] : cases) {
        SCOPED_TRACE(name);
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
        show_message_box(nullptr, {.title = u"Title",
                                   .text = text,
                                   .icon = message_icon::error,
                                   .buttons = buttons,
                                   .check_box_text = u"Do not display this message anymore"});
    }
}

} // namespace
} // namespace girder::ui
