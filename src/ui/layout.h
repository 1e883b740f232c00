#pragma once

#include <functional>
#include <limits>
#include <vector>

namespace girder::ui {

/// Pixels at the dialog's DPI, throughout this header.
struct extent {
    int width = 0;
    int height = 0;

    bool operator==(const extent&) const = default;
};

struct area {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const area&) const = default;
};

struct margins {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

/// A node of a layout: a control, or boxes side by side, or boxes below each other. A plain value; windows are unknown
/// to it.
struct box {
    enum class arrangement : unsigned char { control, row, column };

    // Not inline: trees are built in many places, and copied for the small price that building a window once has.
    box();
    box(const box& other);
    box(box&& other) noexcept;
    box& operator=(const box& other);
    box& operator=(box&& other) noexcept;
    ~box();

    arrangement kind = arrangement::control;
    int control = 0;                         ///< the control placed over the whole box, padding included; 0 for none
    extent natural;                          ///< of a control: the size it is given where there is room
    extent least;                            ///< of a control: the size it is not made smaller than
    std::function<int(int width)> height_at; ///< of a control whose height follows from its width, as wrapped text's
    bool grows_wide = false;                 ///< takes a share of the width that is left over
    bool grows_high = false;
    bool stays_at_top = false; ///< in a row that is higher: at its top instead of its middle
    int spacing = 0;           ///< between children
    margins padding;
    bool equal_widths = false; ///< of a row: every child is as wide as the widest
    std::vector<box> children;
};

/// A control of its natural size, which it keeps.
box control_box(int control, extent natural);
/// A control as wide as `natural_width` and as high as `height_at` says for the width that it gets.
box wrapped_box(int control, int natural_width, std::function<int(int width)> height_at);
/// Empty space of at least this size, which takes the width that is left over in a row.
box filler(int least_width = 0);
/// Children from left to right, each centred in the row's height unless it grows high.
box row(std::vector<box> children, int spacing);
/// Children from top to bottom, at the left edge with their natural width unless they grow wide. A row or column inside
/// gets the whole width.
box column(std::vector<box> children, int spacing);

box growing_wide(box inner);
box growing_both(box inner);
/// Puts a child of a row at the row's top instead of its middle.
box at_top(box inner);
/// A control that gives way down to `least` where the room does not suffice for its natural size.
box shrinking_to(extent least, box control);
box padded(box inner, margins padding);
/// A frame control, such as a group box, around `inner`.
box framed(int control, box inner, margins padding, int least_width);
box with_equal_widths(box inner);

/// Where one control goes.
struct placement {
    int control = 0;
    area place;

    bool operator==(const placement&) const = default;
};

/// The size in which every control has its natural size, nothing is clipped and nothing overlaps.
/// \param widest  limits the width; what gives way or wraps does so, the rest keeps its least width all the same
extent natural_size(const box& root, int widest = std::numeric_limits<int>::max());

/// Places every control of the tree within `available`, parents before children. Room beyond the natural size goes to
/// the boxes that grow; a lack of room is shared by the controls that shrink. Where even their least sizes do not fit,
/// the tree keeps these and reaches beyond.
std::vector<placement> arrange(const box& root, const area& available);

/// A tree in a window that may be too small for it.
struct scrolled_fit {
    extent page;    ///< what the window shows at a time: its inside without the scroll bars that it needs
    extent content; ///< what arrange() makes of the page: larger along each axis that has a scroll bar

    bool operator==(const scrolled_fit&) const = default;
};

/// \param inside  of the window without scroll bars
/// \param bars    the width of a vertical scroll bar and the height of a horizontal one, which take room inside
scrolled_fit fit_scrolled(const box& root, extent inside, extent bars);

/// A window of this size centred over `around`, then moved by as little as puts it inside `bounds`; its top left corner
/// is inside in any case.
area centred(extent size, const area& around, const area& bounds);
/// The same for a window that is at `place`.
area moved_inside(const area& place, const area& bounds);

} // namespace girder::ui
