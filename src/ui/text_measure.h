#pragma once

#include "ui/layout.h"

#include <windows.h>

#include <string_view>

namespace girder::ui {

/// Measures text in one font on the screen. One thread; the font outlives the object.
class text_measure {
public:
    explicit text_measure(HFONT font);
    text_measure(const text_measure&) = delete;
    text_measure& operator=(const text_measure&) = delete;
    ~text_measure();

    /// One line as it stands, ampersands counted.
    extent line(std::u16string_view text) const;

    /// A control's text: line ends kept, the ampersand before a mnemonic not counted.
    extent label(std::u16string_view text) const;

    /// Text broken to a width of at most `width`, at word ends and inside longer words; ampersands counted. As a static
    /// control with SS_NOPREFIX and SS_EDITCONTROL draws it.
    extent wrapped(std::u16string_view text, int width) const;

private:
    extent draw_extent(std::u16string_view text, int width, UINT flags) const;

    HDC screen_;
    HGDIOBJ previous_font_;
};

} // namespace girder::ui
