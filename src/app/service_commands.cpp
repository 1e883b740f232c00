#include "app/service_commands.h"

#include "app/background_operation.h"
#include "app/error_log.h"
#include "localisation/string_tables.h"
#include "resource.h"
#include "service/service_control.h"
#include "service/service_status.h"
#include "string_ids.h"
#include "ui/controls.h"

#include <exception>

namespace tidelink {

using namespace girder::ui;

void service_commands::RefreshServiceStatus()
{
    const std::optional<service_view> view = view_of(look_up_service());
    if (!view)
        return;
    if (view->offers_install) {
        install_mode_ = true;
        change_window_text(dialog_.control(IDC_START), text(string_id::install));
    }
    change_window_text(dialog_.control(IDC_STATUS),
                       item(string_id::service_status, static_cast<std::uint32_t>(view->status)));
    set_enabled(dialog_.control(IDC_START), view->can_start);
    set_enabled(dialog_.control(IDC_STOP), view->can_stop);
}

void service_commands::refresh_unless_pending()
{
    if (!pending_)
        RefreshServiceStatus();
}

void service_commands::StartServerService()
{
    perform([this] {
        if (install_mode_) {
            run(install_service);
            if (!dialog_.window())
                return;
            change_window_text(dialog_.control(IDC_START), text(string_id::start));
            install_mode_ = false;
        }
        run(start_service);
    });
}

void service_commands::StopServerService()
{
    perform([this] { run(stop_service); });
}

void service_commands::perform(const std::function<void()>& steps)
{
    if (pending_)
        return;
    pending_ = true;
    std::exception_ptr error;
    try {
        steps();
    } catch (const girder::operation_cancelled&) {
        // Whoever cancels knows: nothing is reported.
        error = nullptr;
    } catch (...) {
        error = std::current_exception();
    }
    pending_ = false;
    if (dialog_.window()) {
        RefreshServiceStatus();
        if (error)
            std::rethrow_exception(error);
    } else if (error) {
        log_error(error);
    }
}

void service_commands::run(operation start)
{
    const girder::cancellation_source cancel;
    RunWithWaitDialog(dialog_.window(), thread_, cancel, start(cancel.get()));
}

} // namespace tidelink
