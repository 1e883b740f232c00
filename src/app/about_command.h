#pragma once

#include "app/background_operation.h"
#include "app/update_offer.h"
#include "async/ui_thread.h"
#include "ui/dialog.h"

#include <memory>
#include <optional>

namespace tidelink {

/// Opens the About box. What draws it takes long to come into being on some systems, so that is made on the thread pool
/// before the first box is shown, and the window answers meanwhile. User-interface thread only.
class about_command {
public:
    /// All outlive the object. \param updates  what it announces is listed in the box
    about_command(girder::ui_thread& thread, girder::ui::dialog& dialog, const std::optional<update_offer>& updates)
        : thread_(thread), dialog_(dialog), updates_(updates)
    {}
    about_command(const about_command&) = delete;
    about_command& operator=(const about_command&) = delete;
    ~about_command();

    /// Shows the box, the first time soon; until then further calls do nothing.
    void open();

private:
    using drawing_made = details::operation_result<void>;

    void show() const;
    void show_when_made() const noexcept;

    girder::ui_thread& thread_;
    girder::ui::dialog& dialog_;
    const std::optional<update_offer>& updates_;
    std::shared_ptr<drawing_made> made_; ///< null before the first box
};

} // namespace tidelink
