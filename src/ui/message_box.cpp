#include "ui/message_box.h"

#include "base/system_library.h"
#include "ui/clipboard.h"
#include "ui/control_measure.h"
#include "ui/controls.h"
#include "ui/dialog.h"
#include "ui/dialog_layout.h"
#include "ui/message_box_ids.h"

#include <commctrl.h>
#include <shellapi.h>

#include <algorithm>
#include <iterator>
#include <string>

namespace girder::ui {
namespace {

constexpr int all_buttons[] = {IDOK, IDCANCEL, IDABORT, IDRETRY, IDIGNORE, IDYES, IDNO, IDTRYAGAIN, IDCONTINUE};

struct icon_traits {
    using raw_type = HICON;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type icon) noexcept { ::DestroyIcon(icon); }
};
using unique_icon = unique_handle<icon_traits>;

struct icon_kind {
    message_icon icon;
    SHSTOCKICONID stock;
    LPCWSTR fallback;
    UINT sound;
};

const icon_kind icon_kinds[] = {
    {message_icon::information, SIID_INFO, IDI_INFORMATION, MB_ICONINFORMATION},
    {message_icon::question, SIID_HELP, IDI_QUESTION, MB_ICONQUESTION},
    {message_icon::warning, SIID_WARNING, IDI_WARNING, MB_ICONWARNING},
    {message_icon::error, SIID_ERROR, IDI_ERROR, MB_ICONERROR},
};

const icon_kind* kind_of(message_icon icon) noexcept
{
    const auto* const found = std::ranges::find(icon_kinds, icon, &icon_kind::icon);
    return found == std::end(icon_kinds) ? nullptr : found;
}

/// The shell's own icon; empty where it has none to give.
unique_icon load_stock_icon(SHSTOCKICONID id)
{
    const system_library shell(u"shell32.dll");
    SHSTOCKICONINFO info{};
    info.cbSize = sizeof info;
    const auto get_info = shell.function<decltype(::SHGetStockIconInfo)>("SHGetStockIconInfo");
    return SUCCEEDED(get_info(id, SHGSI_ICON | SHGSI_LARGEICON, &info)) ? unique_icon{info.hIcon} : unique_icon{};
}

std::u16string without_mnemonic(std::u16string_view text)
{
    std::u16string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'&' && ++i == text.size())
            break;
        plain += text[i];
    }
    return plain;
}

class message_dialog : public dialog {
public:
    explicit message_dialog(const message_request& request) : request_(request), kind_(kind_of(request.icon)) {}

    message_answer show(HWND owner)
    {
        owner_ = owner;
        const auto button = static_cast<int>(run_modal(IDD_MESSAGE_BOX, owner));
        if (error_)
            std::rethrow_exception(error_);
        return {.button = button, .checked = checked_};
    }

protected:
    bool on_initialise() override
    {
        disable_system_dpi_layout(window());
        set_window_text(window(), request_.title);
        set_window_text(control(IDC_MESSAGE_TEXT), request_.text);
        set_up_icon();
        set_up_check_box();
        set_up_buttons();
        if (escape_button() == 0)
            ::EnableMenuItem(::GetSystemMenu(window(), FALSE), SC_CLOSE, MF_BYCOMMAND | MF_GRAYED);
        arrange_for(::GetDpiForWindow(owner_ ? owner_ : window()));
        centre_on_owner(window(), owner_);
        ::MessageBeep(kind_ ? kind_->sound : MB_OK);
        return false;
    }

    bool on_command(WPARAM command, LPARAM) override
    {
        if (HIWORD(command) != BN_CLICKED)
            return false;
        int id = LOWORD(command);
        if (id == IDCANCEL)
            id = escape_button();
        if (!has_button(id))
            return false;
        checked_ = is_checked_button(control(IDC_MESSAGE_DO_NOT_SHOW));
        end(id);
        return true;
    }

    bool on_message(UINT message, WPARAM wparam, LPARAM lparam, LRESULT&) override
    {
        if (message != WM_DPICHANGED)
            return false;
        const RECT& suggested = *reinterpret_cast<const RECT*>(lparam);
        ::SetWindowPos(window(), nullptr, suggested.left, suggested.top, 0, 0,
                       SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
        arrange_for(LOWORD(wparam));
        return true;
    }

    void on_error(std::exception_ptr error) noexcept override
    {
        error_ = std::move(error);
        end(0);
    }

private:
    bool has_button(int id) const { return std::ranges::count(request_.buttons, id, &message_button::id) > 0; }

    /// What Esc and the close box press; 0 for nothing.
    int escape_button() const
    {
        if (has_button(IDCANCEL))
            return IDCANCEL;
        return request_.buttons.size() == 1 ? request_.buttons.front().id : 0;
    }

    void set_up_icon()
    {
        if (!kind_) {
            ::DestroyWindow(control(IDC_MESSAGE_ICON));
            return;
        }
        icon_ = load_stock_icon(kind_->stock);
        const HICON shown = icon_ ? icon_.get() : ::LoadIconW(nullptr, kind_->fallback);
        ::SendMessageW(control(IDC_MESSAGE_ICON), STM_SETICON, reinterpret_cast<WPARAM>(shown), 0);
    }

    void set_up_check_box()
    {
        const HWND check_box = control(IDC_MESSAGE_DO_NOT_SHOW);
        if (request_.check_box_text.empty()) {
            ::DestroyWindow(check_box);
            return;
        }
        set_window_text(check_box, request_.check_box_text);
        watch_for_copy(check_box);
    }

    void set_up_buttons()
    {
        for (const int id : all_buttons)
            if (!has_button(id))
                ::DestroyWindow(control(id));
        for (const message_button& each : request_.buttons) {
            const HWND button = control(each.id);
            set_window_text(button, each.text);
            // The tab order follows the order on the screen.
            ::SetWindowPos(button, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
            watch_for_copy(button);
        }
        const int chosen = request_.default_button != 0 ? request_.default_button : request_.buttons.front().id;
        ::SendMessageW(window(), DM_SETDEFID, static_cast<WPARAM>(chosen), 0);
        ::SendMessageW(window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control(chosen)), TRUE);
    }

    void watch_for_copy(HWND child) { ::SetWindowSubclass(child, key_filter, 0, reinterpret_cast<DWORD_PTR>(this)); }

    static LRESULT CALLBACK key_filter(HWND child, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR, DWORD_PTR self)
    {
        const bool copies = message == WM_KEYDOWN && wparam == 'C' && ::GetKeyState(VK_CONTROL) < 0;
        if (copies || message == WM_COPY)
            reinterpret_cast<const message_dialog*>(self)->copy_text();
        return ::DefSubclassProc(child, message, wparam, lparam);
    }

    void copy_text() const noexcept
    {
        constexpr std::u16string_view line = u"---------------------------\r\n";
        std::u16string copied(line);
        const auto append_line = [&](std::u16string_view text) { copied.append(text).append(u"\r\n").append(line); };
        append_line(request_.title);
        append_line(request_.text);
        std::u16string captions;
        for (const message_button& button : request_.buttons)
            captions.append(without_mnemonic(button.text)).append(u"   ");
        append_line(captions);
        copy_to_clipboard(window(), copied);
    }

    void arrange_for(UINT dpi)
    {
        // The controls let go of the previous font before it is deleted.
        unique_font font = create_dialog_font(dpi);
        set_dialog_font(window(), font.get());
        font_ = std::move(font);
        lay_out_dialog(window(), layout(control_measure(window(), font_.get(), dpi)), dpi);
    }

    box layout(const control_measure& measure) const
    {
        constexpr int widest_text = 260;
        const int margin = measure.units().horizontal(7);
        const int gap = measure.units().vertical(7);
        const extent text_size = measure.text().wrapped(request_.text, measure.units().horizontal(widest_text));
        std::vector<box> message{growing_wide(control_box(IDC_MESSAGE_TEXT, text_size))};
        if (!request_.check_box_text.empty())
            message.push_back(measure.mark_button(IDC_MESSAGE_DO_NOT_SHOW));
        std::vector<box> upper;
        if (kind_) {
            const int side = ::GetSystemMetricsForDpi(SM_CXICON, measure.units().dpi());
            upper.push_back(control_box(IDC_MESSAGE_ICON, {.width = side, .height = side}));
        }
        upper.push_back(growing_wide(column(std::move(message), gap)));

        std::vector<box> buttons;
        for (const message_button& button : request_.buttons)
            buttons.push_back(measure.push_button(button.id));
        box lower = row({filler(), with_equal_widths(row(std::move(buttons), measure.units().horizontal(4)))}, 0);
        return padded(column({row(std::move(upper), margin), std::move(lower)}, 2 * gap),
                      {.left = margin, .top = margin, .right = margin, .bottom = margin});
    }

    const message_request& request_;
    const icon_kind* kind_;
    HWND owner_ = nullptr;
    unique_icon icon_;
    unique_font font_;
    bool checked_ = false;
    std::exception_ptr error_;
};

} // namespace

message_answer show_message_box(HWND owner, const message_request& request)
{
    return message_dialog(request).show(owner);
}

} // namespace girder::ui
