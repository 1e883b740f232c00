#pragma once

#include "ui_driver/window.h"

#include <cstdint>
#include <vector>

namespace ui_driver {

/// One row of a list view with check boxes.
struct list_row {
    std::u16string text;
    std::int64_t parameter = 0; ///< what the program stored with the row
    bool checked = false;

    bool operator==(const list_row&) const = default;
};

class list_view {
public:
    explicit list_view(control list) noexcept : list_(list) {}

    /// Every row, in order. \throws timed_out, girder::system_error
    std::vector<list_row> rows() const;

    /// Clicks the check box of a row with the left mouse button, and waits until its mark has changed.
    /// \throws timed_out, girder::system_error
    void toggle(int row) const;

    /// Clicks the text of a row with the left mouse button, and waits until the row is selected.
    /// \throws timed_out, girder::system_error
    void click_text(int row) const;

    /// The selected row, -1 when there is none. \throws timed_out
    int selected() const;

    bool checked(int row) const;

private:
    /// A part of a row (LVIR_BOUNDS, LVIR_LABEL) in the list's coordinates.
    RECT rectangle_of(int row, LONG part) const;
    void click_at(LONG x, LONG y) const;

    control list_;
};

} // namespace ui_driver
