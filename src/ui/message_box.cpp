#include "ui/message_box.h"

#include "base/system_library.h"
#include "base/wide.h"
#include "ui/clipboard.h"
#include "ui/controls.h"
#include "ui/dialog.h"
#include "ui/drawing.h"
#include "ui/icons.h"
#include "ui/message_box_ids.h"
#include "ui/rich_text.h"
#include "ui/rich_view.h"

#include <commctrl.h>
#include <shellapi.h>
#include <shlobj.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace girder::ui {
namespace {

constexpr int all_buttons[] = {IDOK, IDCANCEL, IDABORT, IDRETRY, IDIGNORE, IDYES, IDNO, IDTRYAGAIN, IDCONTINUE};

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

/// The shell's own icon of `side` pixels; empty where the shell has none to give.
unique_icon load_stock_icon(SHSTOCKICONID id, int side)
{
    const system_library shell(u"shell32.dll");
    const auto get_info = shell.function<decltype(::SHGetStockIconInfo)>("SHGetStockIconInfo");
    SHSTOCKICONINFO info{};
    info.cbSize = sizeof info;
    if (FAILED(get_info(id, SHGSI_ICON | SHGSI_LARGEICON, &info)))
        return {};
    unique_icon system_sized{info.hIcon};
    if (!system_sized || side == ::GetSystemMetrics(SM_CXICON))
        return system_sized;
    const auto extract = shell.function<decltype(::SHDefExtractIconW)>("SHDefExtractIconW");
    unique_icon exact;
    if (extract(info.szPath, info.iIcon, 0, exact.put(), nullptr, static_cast<UINT>(side)) != S_OK)
        return system_sized;
    return exact;
}

std::u16string without_mnemonic(std::u16string_view text)
{
    std::u16string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'&')
            ++i;
        if (i < text.size())
            plain += text[i];
    }
    return plain;
}

/// What the box puts on the clipboard, in the manner of the system's own message box.
std::u16string as_plain_text(const message_request& request)
{
    constexpr std::u16string_view line = u"---------------------------\r\n";
    std::u16string captions;
    for (const message_button& button : request.buttons)
        captions.append(without_mnemonic(button.text)).append(u"   ");
    std::u16string plain(line);
    const std::u16string text = parse_markup(request.text).text;
    for (const std::u16string_view part : {request.title, std::u16string_view(text), std::u16string_view(captions)})
        plain.append(part).append(u"\r\n").append(line);
    return plain;
}

/// Makes Ctrl+C of a control a WM_COPY to its dialog.
LRESULT CALLBACK copy_key_filter(HWND child, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                                 DWORD_PTR) noexcept
{
    if (message == WM_KEYDOWN && wparam == 'C' && ::GetKeyState(VK_CONTROL) < 0)
        ::SendMessageW(::GetParent(child), WM_COPY, 0, 0);
    if (message == WM_NCDESTROY)
        ::RemoveWindowSubclass(child, copy_key_filter, id);
    return ::DefSubclassProc(child, message, wparam, lparam);
}

class message_dialog : public dialog {
public:
    message_dialog(HWND owner, const message_request& request)
        : owner_(owner), request_(request), kind_(kind_of(request.icon))
    {}

    message_answer show()
    {
        if (!drawing::prepare(owner_))
            return {};
        const auto button = static_cast<int>(run_modal(IDD_MESSAGE_BOX, owner_));
        return {.button = button, .checked = checked_};
    }

protected:
    bool on_initialise() override
    {
        set_window_text(window(), request_.title);
        set_window_text(control(IDC_MESSAGE_TEXT), request_.text);
        replace_by_rich_view(window(), IDC_MESSAGE_TEXT);
        ::SetWindowSubclass(control(IDC_MESSAGE_TEXT), copy_key_filter, 0, 0);
        set_up_check_box();
        set_up_buttons();
        if (!kind_)
            ::DestroyWindow(control(IDC_MESSAGE_ICON));
        if (escape_button() == 0)
            ::EnableMenuItem(::GetSystemMenu(window(), FALSE), SC_CLOSE, MF_BYCOMMAND | MF_GRAYED);
        lay_out_over(owner_);
        ::MessageBeep(kind_ ? kind_->sound : MB_OK);
        return false;
    }

    bool on_command(WPARAM command, LPARAM) override
    {
        if (HIWORD(command) != BN_CLICKED)
            return false;
        const int id = LOWORD(command) == IDCANCEL ? escape_button() : LOWORD(command);
        if (!has_button(id))
            return false;
        checked_ = is_checked_button(control(IDC_MESSAGE_DO_NOT_SHOW));
        end(id);
        return true;
    }

    bool on_message(UINT message, WPARAM, LPARAM, LRESULT&) override
    {
        if (message != WM_COPY)
            return false;
        copy_to_clipboard(window(), as_plain_text(request_));
        return true;
    }

    void on_error(std::exception_ptr error) noexcept override { end_with(std::move(error)); }

    box layout(const control_measure& measure) const override
    {
        const int gap = measure.units().vertical(7);
        const int margin = measure.units().horizontal(7);
        std::vector<box> message{growing_wide(text_box(measure))};
        if (!request_.check_box_text.empty())
            message.push_back(measure.mark_button(IDC_MESSAGE_DO_NOT_SHOW));
        std::vector<box> upper;
        if (kind_)
            upper.push_back(at_top(control_box(
                IDC_MESSAGE_ICON, {.width = icon_side(measure.dpi()), .height = icon_side(measure.dpi())})));
        upper.push_back(growing_wide(column(std::move(message), gap)));

        std::vector<box> buttons;
        for (const message_button& button : request_.buttons)
            buttons.push_back(measure.push_button(button.id));
        box lower = row({filler(), with_equal_widths(row(std::move(buttons), measure.units().horizontal(4)))}, 0);
        return padded(column({row(std::move(upper), margin), filler(title_width(measure)), std::move(lower)}, gap),
                      {.left = margin, .top = margin, .right = margin, .bottom = margin});
    }

    void on_laid_out() override
    {
        if (!kind_)
            return;
        const int side = icon_side(dpi());
        unique_icon icon = load_stock_icon(kind_->stock, side);
        const HANDLE shown =
            icon ? icon.get() : ::LoadImageW(nullptr, kind_->fallback, IMAGE_ICON, side, side, LR_SHARED);
        ::SendMessageW(control(IDC_MESSAGE_ICON), STM_SETICON, reinterpret_cast<WPARAM>(shown), 0);
        icon_ = std::move(icon);
    }

private:
    bool has_button(int id) const { return std::ranges::count(request_.buttons, id, &message_button::id) > 0; }

    /// What Esc and the close box press; 0 for nothing.
    int escape_button() const
    {
        if (has_button(IDCANCEL))
            return IDCANCEL;
        return request_.buttons.size() == 1 ? request_.buttons.front().id : request_.escape_button;
    }

    void set_up_check_box()
    {
        const HWND check_box = control(IDC_MESSAGE_DO_NOT_SHOW);
        if (request_.check_box_text.empty()) {
            ::DestroyWindow(check_box);
            return;
        }
        set_window_text(check_box, request_.check_box_text);
        ::SetWindowSubclass(check_box, copy_key_filter, 0, 0);
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
            ::SetWindowSubclass(button, copy_key_filter, 0, 0);
        }
        const int first = request_.buttons.front().id;
        ::SendMessageW(window(), DM_SETDEFID, static_cast<WPARAM>(first), 0);
        ::SendMessageW(window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control(first)), TRUE);
    }

    static int icon_side(UINT dpi) noexcept { return ::GetSystemMetricsForDpi(SM_CXICON, dpi); }

    /// The narrowest of a few widths in which the text takes no more than half of the screen's height. A text that is
    /// still too long for the screen scrolls rather than push the buttons off it.
    box text_box(const control_measure& measure) const
    {
        constexpr int widths[] = {220, 300, 380, 460};
        constexpr int least_height = 32;
        const HWND view = control(IDC_MESSAGE_TEXT);
        const int highest = ::GetSystemMetrics(SM_CYSCREEN) / 2;
        const auto fits = [&](int units) {
            return rich_view_extent(view, measure.units().horizontal(units)).height <= highest;
        };
        const auto* const chosen = std::find_if(std::begin(widths), std::prev(std::end(widths)), fits);
        box text = measure.rich_text(IDC_MESSAGE_TEXT, measure.units().horizontal(*chosen));
        const extent least{.width = text.natural.width, .height = measure.units().vertical(least_height)};
        return shrinking_to(least, std::move(text));
    }

    /// Room for the title and the close box, within reason.
    int title_width(const control_measure& measure) const
    {
        constexpr int longest = 220;
        const int title = measure.text().line(request_.title).width * 5 / 4;
        return std::min(title + 2 * ::GetSystemMetricsForDpi(SM_CXSIZE, measure.dpi()),
                        measure.units().horizontal(longest));
    }

    HWND owner_;
    const message_request& request_;
    const icon_kind* kind_;
    unique_icon icon_;
    bool checked_ = false;
};

} // namespace

message_answer show_message_box(HWND owner, const message_request& request)
{
    return message_dialog(owner, request).show();
}

} // namespace girder::ui
