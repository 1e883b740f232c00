#pragma once

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

    arrangement kind = arrangement::control;
    int control = 0;         ///< the control placed over the whole box, padding included; 0 for none
    extent natural;          ///< of a control: the least size that shows its content whole
    bool grows_wide = false; ///< takes a share of the width that is left over
    bool grows_high = false;
    int spacing = 0; ///< between children
    margins padding;
    bool equal_widths = false; ///< of a row: every child is as wide as the widest
    std::vector<box> children;
};

/// A control of its natural size.
box control_box(int control, extent natural);
/// Empty space of at least this size, which takes the width that is left over in a row.
box filler(int least_width = 0);
/// Children from left to right, each centred in the row's height unless it grows high.
box row(std::vector<box> children, int spacing);
/// Children from top to bottom, at the left edge with their natural width unless they grow wide. A row or column inside
/// gets the whole width.
box column(std::vector<box> children, int spacing);

box growing_wide(box inner);
box growing_both(box inner);
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

/// The least size in which nothing is clipped and nothing overlaps.
extent natural_size(const box& root);

/// Places every control of the tree within `available`. Where that is smaller than natural_size(), the tree keeps its
/// natural size and reaches beyond.
std::vector<placement> arrange(const box& root, const area& available);

} // namespace girder::ui
