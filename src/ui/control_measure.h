#pragma once

#include "ui/dpi.h"
#include "ui/layout.h"
#include "ui/text_measure.h"

#include <windows.h>

#include <initializer_list>
#include <string_view>

namespace girder::ui {

/// The boxes of a dialog's controls: each of the size that shows the control's present text whole, and never smaller
/// than the control's customary size. For one dialog, font and DPI.
class control_measure {
public:
    /// \param font  the font the controls have at `dpi`; outlives the object
    control_measure(HWND dialog, HFONT font, UINT dpi);

    const dialog_units& units() const noexcept { return units_; }
    const text_measure& text() const noexcept { return text_; }
    UINT dpi() const noexcept { return units_.dpi(); }

    box push_button(int id) const;
    /// Of a button whose caption changes: as large as its present caption or any of these needs.
    box push_button(int id, std::initializer_list<std::u16string_view> captions) const;
    /// A check box or radio button.
    box mark_button(int id) const;
    box label(int id) const;
    /// A static text (SS_NOPREFIX | SS_EDITCONTROL) broken into lines of at most `widest` pixels. The box refers to
    /// this object.
    box wrapped_text(int id, int widest) const;
    /// A rich text view whose text is broken into lines of at most `widest` pixels.
    box rich_text(int id, int widest) const;
    /// A one-line edit of at least `characters` average characters, and of its present text; as high as
    /// centres its text.
    box edit(int id, int characters) const;
    /// A closed drop-down list, wide enough for its longest entry.
    box drop_down_list(int id) const;
    /// A list view that shows `rows` rows of `characters` average characters; where room lacks, fewer rows.
    box list(int id, int rows, int characters) const;
    /// A group box around `inner`.
    box group(int id, box inner) const;

private:
    HWND control(int id) const noexcept { return ::GetDlgItem(dialog_, id); }
    int metric(int index) const noexcept;
    extent label_extent(int id) const;

    HWND dialog_;
    text_measure text_;
    dialog_units units_;
};

} // namespace girder::ui
