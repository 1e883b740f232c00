#pragma once

#include "async/cancellation.h"
#include "ui/control_measure.h"
#include "ui/dialog.h"
#include "ui/layout.h"

#include <windows.h>

#include <functional>

namespace tidelink {

/// The box "Please Wait", dialog template 130, with a bar that runs for as long as it is shown. It has no close box;
/// Esc asks for a cancellation and leaves the box open.
class wait_dialog : public girder::ui::dialog {
public:
    /// \param still_wanted  asked when the box has been built, and after Esc: false ends it
    wait_dialog(girder::cancellation_source cancel, std::function<bool()> still_wanted);

    /// Shows the box until close(), or until it is destroyed with its owner.
    /// \throws girder::system_error
    void show(HWND owner);
    void close() noexcept { end(0); }

protected:
    bool on_initialise() override;
    bool on_command(WPARAM command, LPARAM sender) override;
    bool on_message(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) override;
    void on_error(std::exception_ptr error) noexcept override;
    girder::ui::box layout(const girder::ui::control_measure& measure) const override;

private:
    void close_unless_wanted();

    girder::cancellation_source cancel_;
    std::function<bool()> still_wanted_;
    HWND owner_ = nullptr;
};

} // namespace tidelink
