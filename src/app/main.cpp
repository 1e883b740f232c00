#include "app/com_apartment.h"
#include "app/config_dialog.h"
#include "app/corrections_mode.h"
#include "app/message_hook.h"
#include "app/messages.h"
#include "app/relaunch.h"
#include "app/restart_request.h"
#include "app/running_marker.h"
#include "app/single_instance.h"
#include "async/ui_thread.h"
#include "base/win32_error.h"

#include <windows.h>

#include <commctrl.h>

#include <string_view>

namespace {

using namespace tidelink;

static_assert(std::u16string_view(TIDELINK_UPDATE_HOST).starts_with(u"https://"));

void register_common_controls() noexcept
{
    constexpr INITCOMMONCONTROLSEX classes{.dwSize = sizeof(INITCOMMONCONTROLSEX),
                                           .dwICC = ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES | ICC_BAR_CLASSES |
                                                    ICC_UPDOWN_CLASS | ICC_PROGRESS_CLASS | ICC_USEREX_CLASSES |
                                                    ICC_STANDARD_CLASSES};
    ::InitCommonControlsEx(&classes);
}

/// \return the exit code that WM_QUIT carried
int run_message_loop(const ConfigDialog& dialog)
{
    MSG message{};
    for (;;) {
        const BOOL received = ::GetMessageW(&message, nullptr, 0, 0);
        if (received == -1)
            girder::throw_last_error("GetMessage failed");
        if (received == 0)
            return static_cast<int>(message.wParam);
        if (dialog.window() && ::IsDialogMessageW(dialog.window(), &message))
            continue;
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
}

/// Shows the dialog until it is closed, and starts a new copy when that was asked for.
int run_dialog(int show_command)
{
    girder::ui_thread thread(messages().ui_return);
    restart_request restart;
    ConfigDialog dialog(thread, restart);
    dialog.look_for_updates({.source = {.host = TIDELINK_UPDATE_HOST, .publisher = TIDELINK_UPDATE_PUBLISHER},
                             .page = TIDELINK_VENDOR_PAGE});
    register_common_controls();
    const corrections_mode corrections(thread);
    dialog.create();
    dialog.show(show_command);
    int exit_code = 0;
    {
        const message_hook hook(thread);
        exit_code = run_message_loop(dialog);
    }
    if (restart.requested())
        relaunch();
    return exit_code;
}

} // namespace

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the system's header has its own style of names
int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t*, int show_command)
{
    // DLLs come from the system's folder alone, whatever lies beside the program.
    ::SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (activate_running_copy())
        return 0;
    const com_apartment com;
    const running_marker marker;
    return run_dialog(show_command);
}
