#pragma once

#include "base/unique_com.h"
#include "ui/rich_layout.h"

#include <windows.h>

#include <oleacc.h>

namespace girder::ui {

/// What a view tells assistive programs about itself.
class accessible_view {
public:
    virtual HWND window() const noexcept = 0;
    virtual const rich_text& content() const noexcept = 0;
    /// In the window's client coordinates.
    virtual std::vector<link_area> visible_links() = 0;
    /// -1 when no link has the keyboard.
    virtual int focused_link() const noexcept = 0;
    virtual void focus_link(int link) = 0;
    /// Opens it as a click does.
    virtual void open_link(int link) = 0;

protected:
    ~accessible_view() = default;
};

/// The view as an IAccessible: read-only text with one child for each link. Assistive programs may keep it longer than
/// the view lives; from disconnect() on it answers CO_E_OBJNOTCONNECTED.
class rich_accessible : public IAccessible {
public:
    virtual void disconnect() noexcept = 0;

protected:
    ~rich_accessible() = default;
};

/// \throws system_error
unique_com<rich_accessible> make_accessible(accessible_view& view);

/// The answer to WM_GETOBJECT for OBJID_CLIENT. \return 0 where the system cannot hand the object out
LRESULT hand_out_accessible(IAccessible& object, WPARAM wparam) noexcept;

} // namespace girder::ui
