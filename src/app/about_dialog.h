#pragma once

#include "base/product_version.h"
#include "ui/dialog.h"
#include "ui/picture.h"

#include <windows.h>

#include <optional>
#include <string>
#include <utility>

namespace tidelink {

/// The markup of the About text for a version: name, version, the maker's notice and a link to the vendor's web site.
std::u16string about_text(const girder::product_version& version);

/// The About box, dialog template 108. COM has to be there.
class AboutDialog : public girder::ui::dialog {
public:
    /// \param further_links  markup of lines below the vendor's link, each of which begins with a line feed
    explicit AboutDialog(std::u16string further_links = {}) : further_links_(std::move(further_links)) {}

    /// Shows the box until it is closed.
    /// \param owner  disabled meanwhile; the box is centred on it and has its DPI
    /// \throws girder::system_error
    void show(HWND owner);

protected:
    bool on_initialise() override;
    bool on_command(WPARAM command, LPARAM sender) override;
    bool on_message(UINT message, WPARAM wparam, LPARAM lparam, LRESULT& result) override;
    void on_error(std::exception_ptr error) noexcept override;
    girder::ui::box layout(const girder::ui::control_measure& measure) const override;

private:
    void draw_logo(const DRAWITEMSTRUCT& place);

    std::u16string further_links_;
    HWND owner_ = nullptr;
    std::optional<girder::ui::picture> logo_; ///< empty where it cannot be decoded
};

} // namespace tidelink
