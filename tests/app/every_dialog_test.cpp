#include "app/about_dialog.h"
#include "app/config_dialog.h"
#include "app/correction_box.h"
#include "app/messages.h"
#include "app/wait_dialog.h"
#include "base/path.h"
#include "base/program.h"
#include "base/unique_com.h"
#include "base/utf.h"
#include "base/wide.h"
#include "dialog_environment.h"
#include "handle_figures/handle_figures.h"
#include "localisation/language_packs.h"
#include "resource.h"
#include "settings/settings_store.h"
#include "string_ids.h"
#include "support/cases.h"
#include "ui/controls.h"
#include "ui/looks.h"
#include "ui/message_box.h"
#include "ui/modal_loop.h"
#include "ui/rich_view.h"
#include "ui_driver/polling.h"

#include <gtest/gtest.h>
#include <oleacc.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <set>

namespace {

using namespace tidelink;
using girder::ui::window_text;
using handle_figures::handle_marks;
using look = std::function<void(HWND dialog)>;

/// Every dialog of the program, shown until `look` has seen it.
struct dialog_case {
    const char* name;
    void (*show)(const look& look);
    int group = 0; ///< its group box
};

void show_main(const look& look)
{
    girder::ui_thread thread(messages().ui_return);
    restart_request restart;
    ConfigDialog dialog(thread, restart);
    dialog.create();
    dialog.show(SW_SHOW);
    look(dialog.window());
}

/// Looks at a modal dialog and then ends it with a button.
support::in_modal_loop looking(const look& look, int button)
{
    return support::in_modal_loop([&look, button](HWND dialog) {
        look(dialog);
        ::PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
    });
}

void show_about(const look& look)
{
    const auto one = looking(look, IDCANCEL);
    AboutDialog().show(nullptr);
}

void show_wait(const look& look)
{
    wait_dialog dialog({}, [] { return true; });
    const support::in_modal_loop one([&](HWND window) {
        look(window);
        dialog.close();
    });
    dialog.show(nullptr);
}

void show_correction(const look& look)
{
    const auto one = looking(look, IDOK);
    ask_for_correction(nullptr, u"Share the following ports:", text(string_id::share_following_ports));
}

void show_message(const look& look)
{
    const girder::ui::message_button buttons[] = {{IDYES, text(string_id::yes)}, {IDNO, text(string_id::no)}};
    const auto one = looking(look, IDYES);
    girder::ui::show_message_box(nullptr, {.title = text(string_id::operation_error),
                                           .text = text(string_id::drop_absent_ports_and_share_all),
                                           .icon = girder::ui::message_icon::warning,
                                           .buttons = buttons,
                                           .check_box_text = text(string_id::do_not_display_again)});
}

void show_main_in_each_of_its_states(const look& look)
{
    show_main([&look](HWND dialog) {
        const auto set_text = [dialog](int control, std::u16string_view shown) {
            girder::ui::set_window_text(::GetDlgItem(dialog, control), shown);
        };
        // There are more words than states.
        for (std::uint32_t turn = 0; !item(string_id::access_words, turn).empty(); ++turn) {
            set_text(IDC_START, text(turn % 2 == 0 ? string_id::start : string_id::install));
            set_text(IDC_STATUS, item(string_id::service_status, turn));
            set_text(IDC_ACCESS_WORDS, item(string_id::access_words, turn));
            look(dialog);
        }
    });
}

constexpr dialog_case every_dialog[] = {
    {"main", show_main, IDC_SETTINGS_FRAME},
    {"about", show_about},
    {"wait", show_wait},
    {"correction", show_correction},
    {"message", show_message},
    {"main_in_each_of_its_states", show_main_in_each_of_its_states, IDC_SETTINGS_FRAME},
};

std::wstring class_of(HWND control)
{
    wchar_t kind[32]{};
    ::GetClassNameW(control, kind, 32);
    return kind;
}

LONG_PTR style_of(HWND control)
{
    return ::GetWindowLongPtrW(control, GWL_STYLE);
}

/// What a screen reader tells of a control. Not every system tells the name of a list after its label and the role of
/// the system's own classes: there the documented rules count, by which the name is that of the static control right
/// before, visible or not.
void expect_accessible(HWND control)
{
    static const std::set<std::wstring> lists = {L"SysListView32", L"ComboBox"};
    static const std::set<std::wstring> with_documented_roles = {L"Button", L"Edit", L"SysListView32", L"ComboBox"};
    girder::unique_com<IAccessible> object;
    ASSERT_EQ(::AccessibleObjectFromWindow(control, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                           reinterpret_cast<void**>(object.put())),
              S_OK);
    VARIANT self{};
    self.vt = VT_I4;
    BSTR name = nullptr;
    std::u16string told;
    if (!lists.contains(class_of(control)) && object.get()->get_accName(self, &name) == S_OK && name)
        told = girder::as_utf16(name);
    ::SysFreeString(name);
    const HWND label = ::GetWindow(control, GW_HWNDPREV);
    EXPECT_TRUE(!told.empty() || (class_of(label) == L"Static" && !window_text(label).empty()))
        << ::GetDlgCtrlID(control);
    VARIANT role{};
    EXPECT_EQ(object.get()->get_accRole(self, &role), S_OK);
    EXPECT_TRUE(role.lVal != ROLE_SYSTEM_CLIENT || with_documented_roles.contains(class_of(control)))
        << ::GetDlgCtrlID(control);
}

class every_dialog_test : public testing::TestWithParam<dialog_case>, support::dialog_environment {};

TEST_P(every_dialog_test, tells_a_screen_reader_name_and_role_of_all_that_takes_the_keyboard)
{
    GetParam().show([](HWND dialog) {
        EXPECT_FALSE(window_text(dialog).empty());
        for (const HWND control : support::children_of(dialog)) {
            const bool is_radio_button =
                class_of(control) == L"Button" && (style_of(control) & BS_TYPEMASK) == BS_AUTORADIOBUTTON;
            if ((style_of(control) & WS_TABSTOP) != 0 || is_radio_button)
                expect_accessible(control);
        }
        EXPECT_TRUE(::GetFocus() == dialog || ::IsChild(dialog, ::GetFocus()));
    });
}

TEST_P(every_dialog_test, openings_leave_no_handles)
{
    const auto open = [](int times) {
        for (int i = 0; i < times; ++i)
            GetParam().show([](HWND dialog) {
                ::RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
            });
    };
    open(3); // which make what the system keeps
    const auto before = handle_marks();
    open(200);
    // The system's own threads let go of theirs a little later.
    EXPECT_TRUE(ui_driver::eventually([&] { return std::ranges::equal(handle_marks(), before, std::less_equal()); },
                                      std::chrono::seconds(2)))
        << testing::PrintToString(before) << " kernel, GDI and window objects became "
        << testing::PrintToString(handle_marks());
}

INSTANTIATE_TEST_SUITE_P(dialog, every_dialog_test, testing::ValuesIn(std::span(every_dialog).first<5>()),
                         support::name_of_row);

/// The widest entry of a closed drop-down list is seen whole.
void expect_entries_fit(HWND combo)
{
    COMBOBOXINFO parts{};
    parts.cbSize = sizeof parts;
    ASSERT_TRUE(::GetComboBoxInfo(combo, &parts));
    for (LRESULT entry = 0; entry < ::SendMessageW(combo, CB_GETCOUNT, 0, 0); ++entry) {
        ::SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(entry), 0);
        EXPECT_GE(parts.rcItem.right - parts.rcItem.left, support::drawn_size(combo, DT_NOPREFIX).cx) << entry;
    }
}

void expect_text_fits(HWND control)
{
    const std::wstring kind = class_of(control);
    const LONG_PTR style = style_of(control);
    RECT inside{};
    ::GetClientRect(control, &inside);
    SIZE needed{};
    if (kind == L"Button" && (style & BS_TYPEMASK) == BS_GROUPBOX) {
        needed = {.cx = support::drawn_size(control, 0).cx, .cy = 0};
    } else if (kind == L"Button") {
        EXPECT_TRUE(Button_GetIdealSize(control, &needed));
    } else if (kind == L"Static" && (style & SS_EDITCONTROL) != 0) {
        needed = support::drawn_size(control, DT_WORDBREAK | DT_EDITCONTROL | DT_NOPREFIX, inside.right);
    } else if (kind == L"Static" && (style & SS_TYPEMASK) < SS_ICON) {
        needed = support::drawn_size(control, 0);
    } else if (kind == L"Edit") {
        needed = support::drawn_size(control, DT_NOPREFIX);
    } else if (kind == girder::ui::rich_view_class) {
        const girder::ui::extent room = girder::ui::rich_view_extent(control, inside.right);
        needed = {.cx = room.width, .cy = room.height};
    } else if (kind == L"ComboBox") {
        expect_entries_fit(control);
    }
    const SIZE own = support::size_of(control);
    EXPECT_GE(own.cx, needed.cx) << girder::to_utf8(window_text(control));
    EXPECT_GE(own.cy, needed.cy) << girder::to_utf8(window_text(control));
}

/// At 150, 200 and 100 %, every control shows its text whole and none lies over another.
void expect_fits_at_every_dpi(HWND dialog, int group)
{
    for (const UINT dpi : {144U, 192U, 96U}) {
        SCOPED_TRACE(dpi);
        RECT suggested{.left = 0, .top = 0, .right = 1, .bottom = 1};
        ::SendMessageW(dialog, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested));
        support::expect_tidy(dialog, group);
        for (const HWND child : support::children_of(dialog))
            if ((style_of(child) & WS_VISIBLE) != 0)
                expect_text_fits(child);
    }
}

class every_language_test : public testing::Test, support::dialog_environment {};

TEST_F(every_language_test, fits_every_dialog)
{
    const std::u16string folder(girder::folder_of(girder::program_path()));
    std::vector<std::u16string> languages = {std::u16string(built_in_language)};
    for (const LanguagePackInfo& pack : discoverPacks(folder))
        languages.push_back(pack.locale);
    ASSERT_EQ(languages.size(), 10U) << "with the longer one that is made for tests";
    ServerSettings settings = DefaultServerSettings();
    for (const std::u16string& language : languages) {
        settings.language = language;
        SaveSettings(settings);
        initialise(folder, language);
        ASSERT_EQ(text(string_id::apply) == u"Apply", language == built_in_language) << "the texts of the pack";
        for (const dialog_case& each : every_dialog) {
            SCOPED_TRACE(girder::to_utf8(language) + ' ' + each.name);
            int seen = 0;
            each.show([&](HWND dialog) {
                expect_fits_at_every_dpi(dialog, each.group);
                ++seen;
            });
            EXPECT_GT(seen, 0);
        }
    }
}

} // namespace
