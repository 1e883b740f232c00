#include "app/about_command.h"

#include "app/about_dialog.h"
#include "app/error_log.h"
#include "app/message_texts.h"
#include "ui/drawing.h"

#include <string>

namespace tidelink {
namespace {

girder::task<void> make_drawing()
{
    girder::ui::drawing::shared();
    co_return;
}

} // namespace

about_command::~about_command()
{
    if (!made_)
        return;
    made_->do_not_call();
    made_->wait_briefly();
}

void about_command::open()
{
    if (!made_) {
        made_ = std::make_shared<drawing_made>();
        details::run(made_, make_drawing());
        if (made_->call_at_end([this] { thread_.post([this] { show_when_made(); }); }))
            return;
    }
    if (made_->told())
        show();
}

void about_command::show() const
{
    AboutDialog(updates_ ? updates_->announcements() : std::u16string()).show(dialog_.window());
}

void about_command::show_when_made() const noexcept
try {
    // The window may have been closed meanwhile, or another box have come.
    if (::IsWindowEnabled(dialog_.window()))
        show();
} catch (const std::exception& error) {
    log_error(std::current_exception());
    report_operation_error(dialog_.window(), error);
}

} // namespace tidelink
