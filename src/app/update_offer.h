#pragma once

#include "app/background_operation.h"
#include "async/cancellation.h"
#include "async/ui_thread.h"
#include "ui/dialog.h"
#include "update/update_check.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tidelink {

/// Looks for a newer release in the background, until it got an answer, and offers it. Failures are logged and not
/// shown until the administrator has agreed to the upgrade. User-interface thread only.
class update_offer {
public:
    struct settings {
        update_source source;
        std::u16string page; ///< where a release is described that names no installer
    };
    /// What is not applied yet when the upgrade is about to close the dialog.
    struct changes {
        std::function<bool()> pending;
        std::function<bool()> apply; ///< \return false when the administrator declined a question
    };

    /// Both outlive the object.
    update_offer(girder::ui_thread& thread, girder::ui::dialog& dialog, settings settings, changes changes);
    update_offer(const update_offer&) = delete;
    update_offer& operator=(const update_offer&) = delete;
    /// Ends a check that is under way.
    ~update_offer();

    /// The check starts two seconds after the dialog has nothing else to do.
    void start_later();
    /// What the last answer announced, as markup: lines of links, each of which begins with a line feed. Empty before.
    std::u16string announcements() const;

    /// \return whether the timer was this object's
    bool on_timer(WPARAM timer);

private:
    using check_result = details::operation_result<update_answer>;

    void start();
    void on_checked() noexcept;
    void offer(update_answer& answer, std::uint32_t version);
    void upgrade(prepared_installer& installer);
    void show_page(std::uint32_t version);

    girder::ui_thread& thread_;
    girder::ui::dialog& dialog_;
    settings settings_;
    changes changes_;
    girder::cancellation_source cancel_;
    std::optional<Manifest> manifest_; ///< of the answer, once there is one
    std::shared_ptr<check_result> result_;
    std::shared_ptr<update_offer*> alive_ = std::make_shared<update_offer*>(this); ///< for what was posted
};

} // namespace tidelink
