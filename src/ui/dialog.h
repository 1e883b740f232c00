#pragma once

#include <windows.h>

#include <commctrl.h>

#include <exception>
#include <span>

namespace girder::ui {

/// One row of a dialog's command map: which handler takes a control's notification. A row serves WM_COMMAND and the
/// message that set_command_message() names.
template <typename Dialog>
struct command_route {
    int control;
    WORD notification; ///< BN_CLICKED (0, which menus and accelerators also send), CBN_SELCHANGE, ...
    void (Dialog::*handler)();
};

/// Finds and calls the handler of a command. \return whether there is one
template <typename Dialog>
bool route_command(Dialog& dialog, std::span<const command_route<Dialog>> routes, WPARAM command)
{
    for (const command_route<Dialog>& route : routes) {
        if (route.control == LOWORD(command) && route.notification == HIWORD(command)) {
            (dialog.*route.handler)();
            return true;
        }
    }
    return false;
}

/// A dialog made from a template of the program's resources. Its procedure is the one place where messages enter and
/// where exceptions are stopped: none leaves it into the system.
///
/// The object outlives its window. One thread.
class dialog {
public:
    dialog() = default;
    dialog(const dialog&) = delete;
    dialog& operator=(const dialog&) = delete;
    virtual ~dialog();

    /// The window; null before it is created and after it is destroyed.
    HWND window() const noexcept { return window_; }
    HWND control(int id) const noexcept { return ::GetDlgItem(window_, id); }

protected:
    /// Creates the window without showing it, visible or modal state aside.
    /// \return the window
    /// \throws whatever on_initialise throws; system_error "CreateDialogParam failed ..." carries the system's code
    HWND create_modeless(int template_id, HWND owner, const char* failure_text);

    /// Shows the dialog until end() and returns the value given there.
    /// \throws whatever on_initialise throws, system_error
    INT_PTR run_modal(int template_id, HWND owner);

    /// Ends run_modal().
    void end(INT_PTR result) noexcept { ::EndDialog(window_, result); }

    /// A registered message that carries commands like WM_COMMAND; when handled, its message result is 1, where that of
    /// WM_COMMAND is 0.
    void set_command_message(UINT message) noexcept { command_message_ = message; }

    /// WM_INITDIALOG. What it throws comes out of the creating call.
    /// \return true to let the system set the focus to the first control
    virtual bool on_initialise() { return true; }
    /// \return whether the command was handled
    virtual bool on_command(WPARAM command, LPARAM sender);
    /// \param result  the message's result when handled
    virtual bool on_notify(const NMHDR& notification, LRESULT& result);
    /// Every other message. \return whether it was handled, with its result
    virtual bool on_message(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result);
    /// An exception that left a handler, after initialisation. Must not throw.
    virtual void on_error(std::exception_ptr error) noexcept = 0;

private:
    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

    INT_PTR dispatch(UINT message, WPARAM wparam, LPARAM lparam);
    INT_PTR dispatch_guarded(UINT message, WPARAM wparam, LPARAM lparam) noexcept;
    INT_PTR finish(LRESULT result) noexcept;

    HWND window_ = nullptr;
    UINT command_message_ = 0;
    std::exception_ptr creation_error_;
};

} // namespace girder::ui
