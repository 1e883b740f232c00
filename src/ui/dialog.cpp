#include "ui/dialog.h"

#include "base/win32_error.h"
#include "ui/dpi.h"

#include <utility>

namespace girder::ui {
namespace {

/// Hands the object to the procedure while the system creates its window.
thread_local dialog* current_thread_dialog = nullptr;

/// Messages whose result is what the procedure returns, where that of others is set aside in the window.
bool returns_its_result(UINT message) noexcept
{
    return (message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC) || message == WM_COMPAREITEM ||
           message == WM_VKEYTOITEM || message == WM_CHARTOITEM || message == WM_QUERYDRAGICON;
}

/// Copies what a message's parameter points at. \return false when that is no memory: another program can send it too
bool copy_from(LPARAM address, RECT& rectangle) noexcept
{
    return ::ReadProcessMemory(::GetCurrentProcess(), reinterpret_cast<const void*>(address), &rectangle,
                               sizeof rectangle, nullptr) != FALSE;
}

} // namespace

dialog::~dialog()
{
    if (!window_)
        return;
    ::SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
    ::DestroyWindow(window_);
}

void dialog::begin_creation() noexcept
{
    stage_ = stage::creating;
    error_ = nullptr;
    current_thread_dialog = this;
}

void dialog::rethrow_error()
{
    if (error_)
        std::rethrow_exception(std::exchange(error_, nullptr));
}

HWND dialog::create_modeless(int template_id, HWND owner, const char* failed_call)
{
    modal_ = false;
    begin_creation();
    const HWND created = ::CreateDialogParamW(::GetModuleHandleW(nullptr), MAKEINTRESOURCEW(template_id), owner,
                                              procedure, reinterpret_cast<LPARAM>(this));
    const DWORD code = ::GetLastError();
    current_thread_dialog = nullptr;
    if (error_ && window_)
        ::DestroyWindow(window_);
    rethrow_error();
    if (!created)
        throw_win32(code, failed_call);
    return created;
}

INT_PTR dialog::run_modal(int template_id, HWND owner)
{
    modal_ = true;
    begin_creation();
    const INT_PTR result = ::DialogBoxParamW(::GetModuleHandleW(nullptr), MAKEINTRESOURCEW(template_id), owner,
                                             procedure, reinterpret_cast<LPARAM>(this));
    const DWORD code = ::GetLastError();
    current_thread_dialog = nullptr;
    rethrow_error();
    if (stage_ != stage::running)
        throw_win32(code, "DialogBoxParamW");
    return result;
}

void dialog::end_with(std::exception_ptr error) noexcept
{
    error_ = std::move(error);
    end(0);
}

void dialog::lay_out(UINT dpi)
{
    layout_.apply(window_, dpi, [this](const control_measure& measure) { return layout(measure); });
    on_laid_out();
}

void dialog::lay_out_over(HWND owner)
{
    lay_out(::GetDpiForWindow(owner ? owner : window_));
    centre_on_owner(window_, owner);
}

bool dialog::change_dpi(UINT dpi, const RECT& suggested)
{
    if (layout_.dpi() == 0)
        return false;
    if (dpi == layout_.dpi())
        return true;
    layout_.apply(window_, dpi, suggested, [this](const control_measure& measure) { return layout(measure); });
    on_laid_out();
    return true;
}

box dialog::layout(const control_measure&) const
{
    return {};
}

bool dialog::on_command(WPARAM, LPARAM)
{
    return false;
}

bool dialog::on_notify(const NMHDR&, LRESULT&)
{
    return false;
}

bool dialog::on_message(UINT, WPARAM, LPARAM, LRESULT&)
{
    return false;
}

INT_PTR CALLBACK dialog::procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept
{
    auto* self = reinterpret_cast<dialog*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
    // A window that has its object leaves the slot alone: creating a modal dialog sends messages to its owner too.
    if (!self && current_thread_dialog) {
        self = std::exchange(current_thread_dialog, nullptr);
        ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
        self->window_ = window;
    }
    if (!self)
        return FALSE;
    const INT_PTR result = self->handle(message, wparam, lparam);
    if (message == WM_NCDESTROY)
        self->window_ = nullptr;
    return result;
}

void dialog::fail(std::exception_ptr error) noexcept
{
    if (stage_ != stage::creating)
        on_error(std::move(error));
    else if (!error_)
        error_ = std::move(error);
}

INT_PTR dialog::initialise() noexcept
{
    bool default_focus = true;
    try {
        disable_system_dpi_layout(window_);
        // Who uses the keyboard sees from the start where the focus is.
        ::SendMessageW(window_, WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS | UISF_HIDEACCEL), 0);
        default_focus = on_initialise();
    } catch (...) {
        fail(std::current_exception());
    }
    // A modeless window is destroyed by the call that creates it.
    if (error_ && modal_)
        end(0);
    stage_ = stage::running;
    return default_focus ? TRUE : FALSE;
}

INT_PTR dialog::handle(UINT message, WPARAM wparam, LPARAM lparam) noexcept
{
    // Another program can send it again.
    if (message == WM_INITDIALOG)
        return stage_ == stage::creating ? initialise() : FALSE;
    LRESULT result = command_message_ != 0 && message == command_message_ ? 1 : 0;
    bool handled = true;
    try {
        handled = dispatch(message, wparam, lparam, result);
    } catch (...) {
        fail(std::current_exception());
    }
    if (!handled)
        return FALSE;
    if (returns_its_result(message))
        return result;
    // The handler may have destroyed the window.
    if (window_)
        ::SetWindowLongPtrW(window_, DWLP_MSGRESULT, result);
    return TRUE;
}

bool dialog::dispatch(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result)
{
    // The user gives no command to a dialog behind a modal one; from another program, each could open one more.
    if (message == WM_COMMAND || (command_message_ != 0 && message == command_message_))
        return ::IsWindowEnabled(window_) && on_command(wparam, lparam);
    if (message == WM_NOTIFY)
        return on_notify(*reinterpret_cast<const NMHDR*>(lparam), result);
    if (on_message(message, wparam, lparam, result))
        return true;
    if (message == lay_out_again_message && layout_.dpi() != 0)
        lay_out(layout_.dpi());
    // The common controls hear of new colours from their parent only.
    if (message == WM_SYSCOLORCHANGE)
        for (HWND child = ::GetWindow(window_, GW_CHILD); child; child = ::GetWindow(child, GW_HWNDNEXT))
            ::SendMessageW(child, message, wparam, lparam);
    if (layout_.on_message(window_, message, wparam))
        return true;
    RECT suggested{};
    return message == WM_DPICHANGED && copy_from(lparam, suggested) && change_dpi(LOWORD(wparam), suggested);
}

} // namespace girder::ui
