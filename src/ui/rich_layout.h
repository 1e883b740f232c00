#pragma once

#include "ui/layout.h"
#include "ui/rich_text.h"

#include <windows.h>

#include <memory>
#include <vector>

namespace girder::ui {

/// Where a link, or a line's part of it, is.
struct link_area {
    int link = 0;
    area place;
};

inline RECT as_rectangle(const area& place) noexcept
{
    return {.left = place.x, .top = place.y, .right = place.x + place.width, .bottom = place.y + place.height};
}

/// The system's present colours for text in a dialog.
struct rich_colours {
    COLORREF background = ::GetSysColor(COLOR_BTNFACE);
    COLORREF text = ::GetSysColor(COLOR_BTNTEXT);
    COLORREF link = link_colour();
    COLORREF hovered_link = ::GetSysColor(COLOR_BTNTEXT);

private:
    /// The links' own colour, unless it cannot be told from the background: some themes mean it for another one.
    static COLORREF link_colour() noexcept;
};

/// A rich text broken into lines in one font, ready to be measured and drawn. Pixels; the origin is the text's corner.
class rich_layout {
public:
    rich_layout() = default;
    rich_layout(const rich_layout&) = delete;
    rich_layout& operator=(const rich_layout&) = delete;
    virtual ~rich_layout() = default;

    /// Breaks the text to a width. \return the size it takes \throws system_error
    virtual extent arrange(int width) = 0;

    /// As last arranged, in the order of the text. \throws system_error
    virtual std::vector<link_area> link_areas() = 0;

    /// Fills the part of the device context, and draws the text that begins `scrolled` pixels above the part's top.
    /// \param hovered  the link under the mouse, -1 for none
    /// \return false when this system cannot draw in this way
    virtual bool paint(HDC device, const RECT& part, int scrolled, int hovered) = 0;
};

/// A layout drawn by Direct2D; null where the system cannot. The text outlives it.
std::unique_ptr<rich_layout> make_direct_layout(const rich_text& text, HFONT font);

/// A layout drawn by GDI. Same look, plainer line breaking. The text outlives it.
std::unique_ptr<rich_layout> make_gdi_layout(const rich_text& text, HFONT font);

} // namespace girder::ui
