#pragma once

#include "ui/layout.h"
#include "ui/rich_text.h"

#include <functional>
#include <string_view>
#include <vector>

namespace girder::ui {

/// The room of a piece of text in one style, in pixels.
struct piece_extent {
    int width = 0;
    int ascent = 0; ///< from the base line up
    int descent = 0;
};

using piece_measure = std::function<piece_extent(std::u16string_view text, const text_style& style)>;

/// A piece of one line in one style. Its place includes the blanks at its end.
struct flow_piece {
    std::size_t begin = 0;
    std::size_t length = 0;
    text_style style;
    area place;
};

struct text_flow {
    std::vector<flow_piece> pieces;
    extent size; ///< without the blanks at line ends
};

/// Breaks text into lines of at most `width` pixels: behind blanks, between ideographs, and inside a word only where it
/// is wider than a line. The pieces of a line share a base line. Every piece has at least one character, however narrow
/// the line.
text_flow flow_text(const rich_text& text, int width, const piece_measure& measure);

} // namespace girder::ui
