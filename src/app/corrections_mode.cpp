#include "app/corrections_mode.h"

#include "app/correction_box.h"
#include "app/error_log.h"
#include "base/path.h"
#include "base/program.h"
#include "base/system_library.h"
#include "base/wide.h"
#include "base/win32_error.h"
#include "localisation/corrections.h"
#include "localisation/string_keys.h"
#include "localisation/string_tables.h"
#include "string_ids.h"
#include "ui/controls.h"
#include "ui/dialog.h"

#include <commctrl.h>
#include <objbase.h>
#include <shlobj.h>

#include <string>
#include <string_view>

namespace tidelink {
namespace {

// Hook procedures take no context, and their thread has one instance.
thread_local corrections_mode* hooked_mode = nullptr;

struct button_string {
    int control;
    std::uint32_t id;
};

/// Buttons whose texts some languages have in common with another string.
constexpr button_string button_strings[] = {{IDCANCEL, string_id::cancel}, {IDABORT, string_id::abort},
                                            {IDRETRY, string_id::retry},   {IDTRYAGAIN, string_id::try_again},
                                            {IDIGNORE, string_id::ignore}, {IDCONTINUE, string_id::continue_}};

/// A label's text: that of its string, and perhaps a colon behind it.
bool shows(std::u16string_view shown, std::u16string_view text) noexcept
{
    if (!text.empty() && shown.size() == text.size() + 1 && shown.back() == u':')
        shown.remove_suffix(1);
    return !text.empty() && shown == text;
}

std::optional<std::uint32_t> string_with_text(int control, std::u16string_view shown)
{
    for (const auto& [id, string] : button_strings)
        if (control == id && shows(shown, text(string)))
            return string;
    for (const std::uint32_t string : string_slot::ids)
        if (shows(shown, text(string)))
            return string;
    return std::nullopt;
}

/// Static texts and frames let the mouse through to their dialog.
bool is_transparent(HWND control)
{
    wchar_t name[16]{};
    ::GetClassNameW(control, name, static_cast<int>(std::size(name)));
    const std::wstring_view kind = name;
    return kind == WC_STATICW ||
           (kind == WC_BUTTONW && (::GetWindowLongPtrW(control, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX);
}

void add_tool(HWND tooltip, HWND dialog, HWND control, std::u16string_view key)
{
    std::u16string shown(key);
    TTTOOLINFOW tool{};
    tool.cbSize = TTTOOLINFOW_V1_SIZE;
    tool.uFlags = TTF_SUBCLASS;
    tool.hwnd = dialog;
    tool.uId = reinterpret_cast<UINT_PTR>(control);
    tool.lpszText = girder::as_wide(shown.data());
    if (is_transparent(control)) {
        ::GetWindowRect(control, &tool.rect);
        ::MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&tool.rect), 2);
    } else {
        tool.uFlags |= TTF_IDISHWND;
    }
    ::SendMessageW(tooltip, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

bool is_dialog(HWND window)
{
    return ::GetClassLongPtrW(window, GCW_ATOM) == reinterpret_cast<ULONG_PTR>(WC_DIALOG);
}

/// The user's Documents folder.
/// \throws girder::system_error
std::u16string documents_folder()
{
    const girder::system_library shell(u"shell32.dll");
    wchar_t* path = nullptr;
    const HRESULT result =
        shell.function<decltype(::SHGetKnownFolderPath)>("SHGetKnownFolderPath")(FOLDERID_Documents, 0, nullptr, &path);
    const std::u16string folder(result == S_OK ? girder::as_utf16(std::wstring_view(path)) : std::u16string_view());
    ::CoTaskMemFree(path);
    girder::throw_if_failed(result, "SHGetKnownFolderPath");
    return folder;
}

} // namespace

corrections_mode::corrections_mode(girder::ui_thread& thread) : thread_(thread)
{
    if (!common_strings().corrections_mode())
        return;
    hooked_mode = this;
    message_hook_.reset(::SetWindowsHookExW(WH_GETMESSAGE, on_message, nullptr, ::GetCurrentThreadId()));
    window_hook_.reset(::SetWindowsHookExW(WH_CBT, on_window, nullptr, ::GetCurrentThreadId()));
    if (!message_hook_ || !window_hook_)
        girder::throw_last_error("SetWindowsHookExW");
}

corrections_mode::~corrections_mode()
{
    if (!message_hook_)
        return;
    window_hook_.reset();
    message_hook_.reset();
    hooked_mode = nullptr;
    try {
        const std::u16string folder = documents_folder();
        export_corrections(common_strings(), u"common", folder);
        export_corrections(program_strings(), girder::file_name_of(girder::program_path()), folder);
    } catch (...) {
        log_error(std::current_exception());
    }
}

LRESULT CALLBACK corrections_mode::on_message(int code, WPARAM removal, LPARAM message) noexcept
{
    auto& taken = *reinterpret_cast<MSG*>(message);
    if (code == HC_ACTION && removal == PM_REMOVE && taken.message == WM_KEYDOWN && taken.wParam == VK_F2) {
        hooked_mode->correct_later(taken.hwnd);
        taken.message = WM_NULL;
    }
    return ::CallNextHookEx(nullptr, code, removal, message);
}

LRESULT CALLBACK corrections_mode::on_window(int code, WPARAM window, LPARAM details) noexcept
{
    const HWND dialog = reinterpret_cast<HWND>(window);
    if (code == HCBT_DESTROYWND)
        hooked_mode->tooltips_.erase(dialog);
    if (code == HCBT_ACTIVATE && is_dialog(dialog)) {
        try {
            hooked_mode->name_controls(dialog);
        } catch (...) {
            log_error(std::current_exception());
        }
    }
    return ::CallNextHookEx(nullptr, code, window, details);
}

void corrections_mode::name_controls(HWND dialog)
{
    if (const auto previous = tooltips_.find(dialog); previous != tooltips_.end())
        ::DestroyWindow(previous->second);
    const HWND tooltip =
        ::CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0, 0,
                          dialog, nullptr, nullptr, nullptr);
    tooltips_.insert_or_assign(dialog, tooltip);
    for (HWND control = ::GetWindow(dialog, GW_CHILD); control; control = ::GetWindow(control, GW_HWNDNEXT))
        if (const std::optional<std::uint32_t> string = string_of(control))
            add_tool(tooltip, dialog, control, key_of(*string));
}

/// A corrected control keeps its string: no other one has the text that it shows now.
std::optional<std::uint32_t> corrections_mode::string_of(HWND control)
{
    if (const auto string = string_with_text(::GetDlgCtrlID(control), girder::ui::window_text(control)))
        strings_.insert_or_assign(control, *string);
    const auto found = strings_.find(control);
    return found != strings_.end() ? std::optional(found->second) : std::nullopt;
}

void corrections_mode::correct_later(HWND control) noexcept
try {
    thread_.post([this, control] { correct(control); });
} catch (...) {
    log_error(std::current_exception());
}

void corrections_mode::correct(HWND control) noexcept
try {
    const HWND dialog = ::GetAncestor(control, GA_ROOT);
    const std::optional<std::uint32_t> string = string_of(control);
    if (!dialog || !string)
        return;
    const auto corrected = ask_for_correction(dialog, key_of(*string), girder::ui::window_text(control));
    if (!corrected || !::IsWindow(control))
        return;
    correct_string(*string, *corrected);
    girder::ui::set_window_text(control, *corrected);
    ::SendMessageW(dialog, girder::ui::lay_out_again_message, 0, 0);
} catch (...) {
    log_error(std::current_exception());
}

} // namespace tidelink
