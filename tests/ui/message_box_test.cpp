#include "looks.h"
#include "modal_loop.h"
#include "support/cases.h"
#include "ui/controls.h"
#include "ui/message_box.h"
#include "ui/message_box_ids.h"
#include "ui/rich_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <functional>
#include <ostream>
#include <vector>

namespace girder::ui {
namespace {

using support::expect_tidy;
using support::in_modal_loop;
using support::name_of_row;
using support::place_of;
using testing::ElementsAreArray;

constexpr message_button every_button[] = {{IDOK, u"OK"},
                                           {IDYES, u"&Yes"},
                                           {IDNO, u"&No"},
                                           {IDABORT, u"&Abort"},
                                           {IDRETRY, u"&Retry"},
                                           {IDCANCEL, u"Cancel"},
                                           {IDIGNORE, u"&Ignore"},
                                           {IDTRYAGAIN, u"&Try Again"},
                                           {IDCONTINUE, u"&Continue"}};

std::vector<message_button> buttons_of(const std::vector<int>& ids)
{
    std::vector<message_button> chosen;
    for (const int id : ids)
        chosen.push_back(*std::ranges::find(every_button, id, &message_button::id));
    return chosen;
}

void press(WPARAM key)
{
    ::PostMessageW(::GetFocus(), WM_KEYDOWN, key, 0);
    ::PostMessageW(::GetFocus(), WM_KEYUP, key, LPARAM{0xC0000000});
}

void press_with_alt(WPARAM character)
{
    ::PostMessageW(::GetFocus(), WM_SYSCHAR, character, LPARAM{1} << 29);
}

std::vector<int> button_ids(HWND dialog)
{
    std::vector<int> ids;
    for (const HWND child : support::children_of(dialog))
        if (std::ranges::count(every_button, ::GetDlgCtrlID(child), &message_button::id) > 0)
            ids.push_back(::GetDlgCtrlID(child));
    return ids;
}

TEST(message_box_test, combination_shows_exactly_its_buttons_from_left_to_right)
{
    constexpr unsigned all = (1U << std::size(every_button)) - 1;
    for (unsigned set = 1; set <= all; ++set) {
        if (std::popcount(set) > 3 && set != all)
            continue;
        std::vector<message_button> chosen;
        std::vector<int> ids;
        for (std::size_t i = 0; i < std::size(every_button); ++i)
            if (set & (1U << i)) {
                chosen.push_back(every_button[i]);
                ids.push_back(every_button[i].id);
            }
        const in_modal_loop looking([&](HWND dialog) {
            EXPECT_THAT(button_ids(dialog), ElementsAreArray(ids));
            EXPECT_EQ(LOWORD(::SendMessageW(dialog, DM_GETDEFID, 0, 0)), ids.front());
            const RECT first = place_of(::GetDlgItem(dialog, ids.front()));
            for (std::size_t i = 1; i < ids.size(); ++i) {
                const RECT place = place_of(::GetDlgItem(dialog, ids[i]));
                EXPECT_GT(place.left, place_of(::GetDlgItem(dialog, ids[i - 1])).right);
                EXPECT_EQ(place.right - place.left, first.right - first.left);
            }
            expect_tidy(dialog);
            ::SendMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(ids.back()), 0);
        });
        ASSERT_EQ(show_message_box(nullptr, {.title = u"Title", .text = u"Text", .buttons = chosen}).button, ids.back())
            << "set " << set;
    }
}

struct key_case {
    const char* name;
    std::vector<int> buttons;
    int default_button;
    int escape_button;
    std::function<void(HWND)> keys;
    int expected;
};

std::ostream& operator<<(std::ostream& out, const key_case& row)
{
    return out << row.name;
}

class message_box_key_test : public testing::TestWithParam<key_case> {};

TEST_P(message_box_key_test, answers)
{
    const std::vector<message_button> buttons = buttons_of(GetParam().buttons);
    const in_modal_loop pressing(GetParam().keys);
    EXPECT_EQ(show_message_box(nullptr, {.title = u"Title",
                                         .text = u"Text",
                                         .icon = message_icon::warning,
                                         .buttons = buttons,
                                         .default_button = GetParam().default_button,
                                         .escape_button = GetParam().escape_button,
                                         .check_box_text = u"&Do not display this message anymore"})
                  .button,
              GetParam().expected);
}

void press_enter(HWND)
{
    press(VK_RETURN);
}
void press_tab_and_enter(HWND)
{
    press(VK_TAB);
    press(VK_RETURN);
}
void press_space(HWND)
{
    press(VK_SPACE);
}
void press_alt_n(HWND)
{
    press_with_alt('n');
}
void press_escape(HWND)
{
    press(VK_ESCAPE);
}
void press_close_box(HWND dialog)
{
    ::PostMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0);
}
/// Keys that must do nothing, then the one that ends the box.
void try_to_escape_then_no(HWND dialog)
{
    EXPECT_NE(::GetMenuState(::GetSystemMenu(dialog, FALSE), SC_CLOSE, MF_BYCOMMAND) & MF_GRAYED, 0U);
    press_escape(dialog);
    ::PostMessageW(dialog, WM_CLOSE, 0, 0);
    press_alt_n(dialog);
}

INSTANTIATE_TEST_SUITE_P(
    key, message_box_key_test,
    testing::ValuesIn(std::to_array<key_case>({
        {"enter_presses_the_first", {IDYES, IDNO}, 0, 0, press_enter, IDYES},
        {"enter_presses_the_default", {IDYES, IDNO}, IDNO, 0, press_enter, IDNO},
        {"tab_moves_on", {IDABORT, IDRETRY, IDIGNORE}, 0, 0, press_tab_and_enter, IDRETRY},
        {"space_presses_the_focused", {IDYES, IDNO}, IDNO, 0, press_space, IDNO},
        {"mnemonic", {IDYES, IDNO}, 0, 0, press_alt_n, IDNO},
        {"escape_presses_cancel", {IDYES, IDNO, IDCANCEL}, 0, 0, press_escape, IDCANCEL},
        {"escape_presses_the_only_button", {IDOK}, 0, 0, press_escape, IDOK},
        {"escape_presses_the_named_button", {IDYES, IDNO}, 0, IDNO, press_escape, IDNO},
        {"escape_does_nothing_without_a_button_for_it", {IDYES, IDNO}, 0, 0, try_to_escape_then_no, IDNO},
        {"close_box_is_escape", {IDRETRY, IDCANCEL}, 0, 0, press_close_box, IDCANCEL},
    })),
    name_of_row);

TEST(message_box_test, check_box_gives_its_answer)
{
    const auto ok = buttons_of({IDOK});
    for (const bool check : {false, true}) {
        const in_modal_loop answering([&](HWND dialog) {
            EXPECT_EQ(window_text(::GetDlgItem(dialog, IDC_MESSAGE_DO_NOT_SHOW)), u"&Again?");
            if (check)
                press_with_alt('a');
            press_enter(dialog);
        });
        const message_answer answer = show_message_box(
            nullptr, {.title = u"Title", .text = u"Text", .buttons = ok, .check_box_text = u"&Again?"});
        EXPECT_EQ(answer.checked, check);
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

struct text_case {
    const char* name;
    std::u16string text;
};

std::ostream& operator<<(std::ostream& out, const text_case& row)
{
    return out << row.name;
}

class message_box_text_test : public testing::TestWithParam<text_case> {};

std::u16string repeated(std::u16string_view part, int times)
{
    std::u16string all;
    for (int i = 0; i < times; ++i)
        all += part;
    return all;
}

TEST_P(message_box_text_test, is_shown_whole_inside_the_work_area)
{
    const auto buttons = buttons_of({IDYES, IDNO});
    const in_modal_loop looking([](HWND dialog) {
        const HWND text = ::GetDlgItem(dialog, IDC_MESSAGE_TEXT);
        const SIZE own = support::size_of(text);
        const extent needed = rich_view_extent(text, own.cx);
        EXPECT_LE(needed.width, own.cx);
        EXPECT_LE(needed.height, own.cy);
        expect_tidy(dialog);
        const RECT work = support::work_area();
        const RECT window = place_of(dialog);
        EXPECT_TRUE(support::is_inside(window, work));
        EXPECT_NEAR((window.left + window.right) / 2, (work.left + work.right) / 2, 1);
        ::PostMessageW(dialog, WM_COMMAND, IDYES, 0);
    });
    show_message_box(nullptr, {.title = u"Title",
                               .text = GetParam().text,
                               .icon = message_icon::error,
                               .buttons = buttons,
                               .check_box_text = u"Do not display this message anymore"});
}

INSTANTIATE_TEST_SUITE_P(text, message_box_text_test,
                         testing::ValuesIn(std::to_array<text_case>({
                             {"empty", u""},
                             {"short", u"Done."},
                             {"paragraph", repeated(u"The quick brown fox jumps over the lazy dog. ", 9)},
                             {"many_lines", repeated(u"sharedPorts: Bad format\n", 24)},
                             {"one_long_word", repeated(u"0123456789abcdef", 30)},
                             {"long_text", repeated(u"W\u00E4hrend der Ausf\u00FChrung trat ein Fehler auf. ", 60)},
                         })),
                         name_of_row);

TEST(message_box_test, text_longer_than_the_screen_leaves_the_buttons_on_it)
{
    const auto ok = buttons_of({IDOK});
    const in_modal_loop looking([](HWND dialog) {
        expect_tidy(dialog);
        EXPECT_LE(place_of(::GetDlgItem(dialog, IDOK)).bottom, support::work_area().bottom);
        ::PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    });
    show_message_box(nullptr, {.title = u"Title", .text = repeated(u"line\n", 500), .buttons = ok});
}

} // namespace
} // namespace girder::ui
