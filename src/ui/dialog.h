#pragma once

#include "ui/control_measure.h"
#include "ui/dialog_layout.h"
#include "ui/layout.h"

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
    WORD notification; ///< BN_CLICKED (0, which menus also send), CBN_SELCHANGE, ...
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

/// Sent to a dialog when its controls have other texts: it lays them out again. Nothing before it is laid out first.
inline constexpr UINT lay_out_again_message = WM_APP;

/// A dialog made from a template of the program's resources. Its procedure is the one place where messages enter and
/// where exceptions are stopped: none leaves it into the system.
///
/// The object outlives its window, which a handler may destroy, and lives on one thread. A destroyed object takes its
/// window along without another message to it.
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
    /// Creates the window without showing it.
    /// \param failed_call  what the system_error for a window that cannot be created names
    /// \throws what on_initialise or an earlier handler threw; system_error
    HWND create_modeless(int template_id, HWND owner, const char* failed_call);

    /// Shows the dialog until end() and returns the value given there.
    /// \throws what on_initialise, an earlier handler or end_with() gave; system_error
    INT_PTR run_modal(int template_id, HWND owner);

    /// Ends run_modal().
    void end(INT_PTR result) noexcept { ::EndDialog(window_, result); }
    /// Ends run_modal() with an exception.
    void end_with(std::exception_ptr error) noexcept;

    /// A registered message that carries commands like WM_COMMAND; when handled, its message result is 1, where that of
    /// WM_COMMAND is 0.
    void set_command_message(UINT message) noexcept { command_message_ = message; }

    /// Gives the controls the dialog font of a DPI and puts them where layout() says; the dialog becomes as large as
    /// they need. To be called when their texts are set, and again when texts change. From then on a change of the DPI
    /// does the same with the new DPI.
    void lay_out(UINT dpi);
    /// The same with the DPI of the owner's screen, and over its middle; without an owner on the dialog's own screen.
    void lay_out_over(HWND owner);
    /// The DPI that the controls are laid out for.
    UINT dpi() const noexcept { return layout_.dpi(); }

    /// The arrangement of the controls for their present texts.
    virtual box layout(const control_measure& measure) const;
    /// After every lay_out(): what follows from the controls' new sizes.
    virtual void on_laid_out() {}

    /// WM_INITDIALOG. What it throws comes out of the creating call.
    /// \return true to let the system set the focus to the first control
    virtual bool on_initialise() { return true; }
    /// \return whether the command was handled
    virtual bool on_command(WPARAM command, LPARAM sender);
    /// \param result  the message's result when handled
    virtual bool on_notify(const NMHDR& notification, LRESULT& result);
    /// Every other message. \return whether it was handled, with its result
    virtual bool on_message(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result);
    /// An exception that left a handler, after initialisation.
    virtual void on_error(std::exception_ptr error) noexcept = 0;

private:
    enum class stage : unsigned char { none, creating, running };

    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) noexcept;

    void begin_creation() noexcept;
    void rethrow_error();
    void fail(std::exception_ptr error) noexcept;
    INT_PTR handle(UINT message, WPARAM wparam, LPARAM lparam) noexcept;
    INT_PTR initialise() noexcept;
    bool dispatch(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result);
    bool change_dpi(UINT dpi, const RECT& suggested);

    HWND window_ = nullptr;
    UINT command_message_ = 0;
    stage stage_ = stage::none;
    bool modal_ = false;
    std::exception_ptr error_; ///< for the creating call
    dialog_layout layout_;
};

} // namespace girder::ui
