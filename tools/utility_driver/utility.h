#pragma once

#include "base/handles.h"
#include "ui_driver/list_view.h"
#include "ui_driver/window.h"

#include <string>
#include <vector>

namespace utility_driver {

/// Full path of the program that is started.
extern std::u16string program_under_test;
/// Full path of the stand-in server that is installed.
extern std::u16string server_under_test;

inline constexpr char16_t main_window_title[] = u"Zelmark Tidelink Server Control";
inline constexpr char16_t error_title[] = u"Operation Error";
inline constexpr char16_t wait_title[] = u"Please Wait";
inline constexpr char16_t question_title[] = u"Tidelink Port Server";

namespace id {
inline constexpr int ok = 1;
inline constexpr int cancel = 2;
inline constexpr int apply = 3;
inline constexpr int yes = 6;
inline constexpr int no = 7;
inline constexpr int about = 1013;
inline constexpr int status = 1001;
inline constexpr int start = 1002;
inline constexpr int stop = 1003;
inline constexpr int share_all = 1005;
inline constexpr int share_selected = 1006;
inline constexpr int port_list = 1007;
inline constexpr int auto_discovery = 1008;
inline constexpr int security = 1010;
inline constexpr int language = 1016;
inline constexpr int message_text = 1022;
inline constexpr int access_words = 1023;
} // namespace id

/// One run of the program. Ended with the object when it still runs.
class utility {
public:
    /// Starts the program, or a copy of it, without waiting for its window.
    /// \throws girder::system_error
    explicit utility(const std::u16string& program = program_under_test);
    utility(const utility&) = delete;
    utility& operator=(const utility&) = delete;
    ~utility();

    DWORD process_id() const noexcept { return id_; }
    HANDLE process() const noexcept { return process_.get(); }

    /// The main window, as soon as it is there and nothing modal stands before it. \throws ui_driver::timed_out
    ui_driver::dialog window() const;
    ui_driver::control control(int id) const { return window().item(id); }
    ui_driver::list_view list() const { return ui_driver::list_view(control(id::port_list)); }
    /// Numbers of the checked ports, in the list's order.
    std::vector<int> checked_ports() const;
    /// Makes exactly these ports checked, with the mouse.
    void check_ports(const std::vector<int>& numbers) const;
    /// Chooses an entry of the list of languages, without waiting for what follows.
    void choose_language(int entry) const;
    bool apply_enabled() const { return control(id::apply).enabled(); }

    /// A box of this program, as soon as it is there. \throws ui_driver::timed_out
    ui_driver::dialog message(const char16_t* title) const;
    /// The system's editor of access rights, whose title is the system's, as soon as the main window is disabled for
    /// it. \throws ui_driver::timed_out
    ui_driver::dialog access_editor() const;
    /// What a box says, in UTF-8.
    static std::string text_of(const ui_driver::dialog& box);
    /// Presses a button of a box, and waits until the box is gone.
    static void answer(const ui_driver::dialog& box, int button);

    /// Waits for the end of the process. \throws ui_driver::timed_out
    DWORD exit_code() const;
    /// Closes the window by its close box and waits for the end. \return the exit code
    DWORD close() const;

private:
    girder::unique_kernel_handle process_;
    DWORD id_ = 0;
};

} // namespace utility_driver
