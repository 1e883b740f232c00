#include "app/com_apartment.h"
#include "base/program.h"
#include "base/utf.h"
#include "every_dialog.h"
#include "localisation/language_packs.h"
#include "settings/settings_store.h"
#include "support/scratch_hive.h"
#include "ui/controls.h"
#include "ui/looks.h"
#include "ui/rich_view.h"

#include <windows.h>

#include <commctrl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <set>

namespace {

using namespace tidelink;
using girder::ui::window_text;

/// English, every language that is shipped, and the longer one that is made for tests.
std::vector<std::u16string> all_languages()
{
    std::vector<std::u16string> locales{std::u16string(built_in_language)};
    for (const LanguagePackInfo& pack : discoverPacks(folder_of(girder::program_path())))
        locales.push_back(pack.locale);
    return locales;
}

SIZE client_size(HWND control)
{
    RECT inside{};
    ::GetClientRect(control, &inside);
    return {.cx = inside.right, .cy = inside.bottom};
}

/// The widest entry of a closed drop-down list is seen whole.
void expect_entries_fit(HWND combo)
{
    COMBOBOXINFO parts{};
    parts.cbSize = sizeof parts;
    ASSERT_TRUE(::GetComboBoxInfo(combo, &parts));
    const LRESULT selected = ::SendMessageW(combo, CB_GETCURSEL, 0, 0);
    for (LRESULT entry = 0; entry < ::SendMessageW(combo, CB_GETCOUNT, 0, 0); ++entry) {
        ::SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(entry), 0);
        EXPECT_GE(parts.rcItem.right - parts.rcItem.left, support::drawn_size(combo, DT_NOPREFIX).cx) << entry;
    }
    ::SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(selected), 0);
}

void expect_text_fits(HWND control)
{
    wchar_t name[32]{};
    ::GetClassNameW(control, name, static_cast<int>(std::size(name)));
    const std::wstring_view kind = name;
    const LONG_PTR style = ::GetWindowLongPtrW(control, GWL_STYLE);
    SIZE needed{};
    if (kind == L"Button" && (style & BS_TYPEMASK) == BS_GROUPBOX) {
        needed = {.cx = support::drawn_size(control, 0).cx, .cy = 0};
    } else if (kind == L"Button") {
        EXPECT_TRUE(Button_GetIdealSize(control, &needed));
    } else if (kind == L"Static" && (style & SS_EDITCONTROL) != 0) {
        needed = support::drawn_size(control, DT_WORDBREAK | DT_EDITCONTROL | DT_NOPREFIX, client_size(control).cx);
    } else if (kind == L"Static" && (style & SS_TYPEMASK) < SS_ICON) {
        needed = support::drawn_size(control, 0);
    } else if (kind == L"Edit") {
        needed = support::drawn_size(control, DT_NOPREFIX);
    } else if (kind == girder::ui::rich_view_class) {
        const girder::ui::extent room = girder::ui::rich_view_extent(control, client_size(control).cx);
        needed = {.cx = room.width, .cy = room.height};
    } else if (kind == L"ComboBox") {
        expect_entries_fit(control);
    }
    const SIZE own = support::size_of(control);
    EXPECT_GE(own.cx, needed.cx) << girder::to_utf8(window_text(control));
    EXPECT_GE(own.cy, needed.cy) << girder::to_utf8(window_text(control));
}

void expect_unique_mnemonics(HWND dialog)
{
    std::map<char16_t, std::u16string> owners;
    for (const HWND child : support::children_of(dialog)) {
        const std::u16string text = window_text(child);
        const std::size_t mark = text.find(u'&');
        if (mark == std::u16string::npos || (::GetWindowLongPtrW(child, GWL_STYLE) & SS_NOPREFIX) != 0)
            continue;
        const wchar_t letter[] = {static_cast<wchar_t>(text.at(mark + 1)), L'\0'};
        wchar_t upper[2]{};
        ::LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, letter, 1, upper, 2, nullptr, nullptr, 0);
        const auto [owner, is_first] = owners.emplace(static_cast<char16_t>(upper[0]), text);
        EXPECT_TRUE(is_first) << girder::to_utf8(owner->second) << " and " << girder::to_utf8(text);
    }
}

/// Every control shows its text whole, none lies over another, none shares its mnemonic.
void expect_fits(HWND dialog, int group = 0)
{
    support::expect_tidy(dialog, group);
    expect_unique_mnemonics(dialog);
    for (const HWND child : support::children_of(dialog))
        if ((::GetWindowLongPtrW(child, GWL_STYLE) & WS_VISIBLE) != 0)
            expect_text_fits(child);
}

/// Every dialog, each of them at 150, 200 and 100 %, in one language.
class language_fit_test : public testing::TestWithParam<std::u16string> {
protected:
    void SetUp() override
    {
        constexpr INITCOMMONCONTROLSEX classes{.dwSize = sizeof(INITCOMMONCONTROLSEX),
                                               .dwICC = ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS};
        ::InitCommonControlsEx(&classes);
        ServerSettings settings = DefaultServerSettings();
        settings.language = GetParam();
        SaveSettings(settings);
        tidelink::initialise(folder_of(girder::program_path()), GetParam());
        ASSERT_EQ(text(string_id::apply) == u"Apply", GetParam() == built_in_language)
            << "the texts are those of the pack";
    }

    static void expect_fits_at_every_dpi(HWND dialog, int group)
    {
        for (const UINT dpi : {144U, 192U, 96U}) {
            SCOPED_TRACE(dpi);
            RECT suggested{.left = 0, .top = 0, .right = 1, .bottom = 1};
            ::SendMessageW(dialog, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&suggested));
            expect_fits(dialog, group);
        }
    }

private:
    support::scratch_hive hive_;
    com_apartment com_;
};

TEST_P(language_fit_test, every_dialog)
{
    for (const every_dialog::entry& each : every_dialog::all) {
        SCOPED_TRACE(each.name);
        int seen = 0;
        each.show([&](HWND dialog) {
            expect_fits_at_every_dpi(dialog, each.group);
            ++seen;
        });
        EXPECT_EQ(seen, 1);
    }
}

/// The items of a list, one after the other, and again from the first one on.
std::u16string_view item_in_turn(std::uint32_t list, std::uint32_t turn)
{
    std::uint32_t count = 0;
    while (!item(list, count).empty())
        ++count;
    return item(list, turn % count);
}

TEST_P(language_fit_test, main_dialog_in_each_of_its_states)
{
    every_dialog::show_main([](HWND dialog) {
        const auto set_text = [dialog](int control, std::u16string_view shown) {
            girder::ui::set_window_text(::GetDlgItem(dialog, control), shown);
        };
        constexpr std::uint32_t more_than_any_list_has = 12;
        for (std::uint32_t turn = 0; turn < more_than_any_list_has; ++turn) {
            set_text(IDC_START, text(turn % 2 == 0 ? string_id::start : string_id::install));
            set_text(IDC_STATUS, item_in_turn(string_id::service_status, turn));
            set_text(IDC_ACCESS_WORDS, item_in_turn(string_id::access_words, turn));
            expect_fits_at_every_dpi(dialog, IDC_SETTINGS_FRAME);
        }
    });
}

INSTANTIATE_TEST_SUITE_P(languages, language_fit_test, testing::ValuesIn(all_languages()), [](const auto& language) {
    std::string name = girder::to_utf8(language.param);
    std::ranges::replace_if(name, [](char character) { return std::isalnum(character) == 0; }, '_');
    return name;
});

TEST(language_fit_test, has_all_languages)
{
    const std::vector<std::u16string> found = all_languages();
    EXPECT_EQ(std::set(found.begin(), found.end()), (std::set<std::u16string>{u"de", u"en", u"es", u"fr", u"it", u"ja",
                                                                              u"pl", u"pt-br", u"qps-ploc", u"zh-cn"}));
}

} // namespace
