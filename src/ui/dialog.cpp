#include "ui/dialog.h"

#include "base/win32_error.h"

#include <utility>

namespace girder::ui {
namespace {

/// Hands the object to the procedure while the system creates its window.
thread_local dialog* current_thread_dialog = nullptr;

} // namespace

dialog::~dialog()
{
    if (window_)
        ::DestroyWindow(window_);
}

HWND dialog::create_modeless(int template_id, HWND owner, const char* failure_text)
{
    current_thread_dialog = this;
    const HWND created = ::CreateDialogParamW(::GetModuleHandleW(nullptr), MAKEINTRESOURCEW(template_id), owner,
                                              procedure, reinterpret_cast<LPARAM>(this));
    const DWORD code = ::GetLastError();
    current_thread_dialog = nullptr;
    if (creation_error_)
        std::rethrow_exception(std::exchange(creation_error_, nullptr));
    if (!created)
        throw_win32(code, failure_text);
    return created;
}

INT_PTR dialog::run_modal(int template_id, HWND owner)
{
    current_thread_dialog = this;
    const INT_PTR result = ::DialogBoxParamW(::GetModuleHandleW(nullptr), MAKEINTRESOURCEW(template_id), owner,
                                             procedure, reinterpret_cast<LPARAM>(this));
    const DWORD code = ::GetLastError();
    current_thread_dialog = nullptr;
    if (creation_error_)
        std::rethrow_exception(std::exchange(creation_error_, nullptr));
    if (result == -1)
        throw_win32(code, "DialogBoxParamW");
    return result;
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

INT_PTR CALLBACK dialog::procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam)
{
    if (current_thread_dialog) {
        dialog* const created = std::exchange(current_thread_dialog, nullptr);
        ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
        created->window_ = window;
    }
    auto* const self = reinterpret_cast<dialog*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!self)
        return FALSE;
    const INT_PTR handled = self->dispatch_guarded(message, wparam, lparam);
    if (message == WM_NCDESTROY)
        self->window_ = nullptr;
    return handled;
}

INT_PTR dialog::dispatch_guarded(UINT message, WPARAM wparam, LPARAM lparam) noexcept
{
    try {
        return dispatch(message, wparam, lparam);
    } catch (...) {
        if (message == WM_INITDIALOG) {
            creation_error_ = std::current_exception();
            ::DestroyWindow(window_);
        } else {
            on_error(std::current_exception());
        }
        return TRUE;
    }
}

INT_PTR dialog::dispatch(UINT message, WPARAM wparam, LPARAM lparam)
{
    if (message == WM_INITDIALOG)
        return on_initialise() ? TRUE : FALSE;
    if (message == WM_COMMAND)
        return on_command(wparam, lparam) ? finish(0) : FALSE;
    if (command_message_ != 0 && message == command_message_)
        return on_command(wparam, lparam) ? finish(1) : FALSE;
    LRESULT result = 0;
    if (message == WM_NOTIFY)
        return on_notify(*reinterpret_cast<const NMHDR*>(lparam), result) ? finish(result) : FALSE;
    return on_message(message, wparam, lparam, result) ? finish(result) : FALSE;
}

INT_PTR dialog::finish(LRESULT result) noexcept
{
    if (window_)
        ::SetWindowLongPtrW(window_, DWLP_MSGRESULT, result);
    return TRUE;
}

} // namespace girder::ui
