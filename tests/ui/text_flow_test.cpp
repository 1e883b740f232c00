#include "ui/text_flow.h"

#include <gtest/gtest.h>

namespace girder::ui {
namespace {

/// Every character is 10 pixels wide, 8 above the base line and 2 below it; in percent of that.
piece_extent grid(std::u16string_view text, const text_style& style)
{
    const int one = style.percent / 10;
    return {.width = static_cast<int>(text.size()) * one, .ascent = one * 8 / 10, .descent = one * 2 / 10};
}

/// The pieces with their left and top edges, one line's behind the other.
std::string described(const rich_text& text, const text_flow& flow)
{
    std::string all;
    for (const flow_piece& piece : flow.pieces) {
        for (std::size_t i = piece.begin; i < piece.begin + piece.length; ++i)
            all += text.text[i] < 0x80 ? static_cast<char>(text.text[i]) : '?';
        all += '@' + std::to_string(piece.place.x) + ',' + std::to_string(piece.place.y) + ' ';
    }
    return all;
}

TEST(text_flow_test, breaks)
{
    const struct {
        const char* name;
        std::u16string_view markup;
        int width;
        std::string_view pieces;
        extent size;
    } cases[] = {
        {"blanks_may_hang_over", u"abc  d", 30, "abc  @0,0 d@0,10 ", {30, 20}},
        {"line_feeds", u"a\n\nb\n", 50, "a@0,0 b@0,20 ", {10, 40}},
        {"long_word", u"a bcdefg h", 30, "a @0,0 bcd@0,10 efg @0,20 h@0,30 ", {30, 40}},
        {"surrogates_stay_together", u"\U0001F600\U0001F600", 5, "??@0,0 ??@0,10 ", {20, 20}},
        {"between_ideographs", u"\u6B21\u306E\u30DD", 20, "?@0,0 ?@10,0 ?@0,10 ", {20, 20}},
        {"common_base_line", u"a [[[s:200:B]]]", 90, "a @0,8 B@20,0 ", {40, 20}},
        {"empty_line_of_its_size", u"[[[s:200:\n]]]a", 90, "a@0,20 ", {10, 30}},
    };
    for (const auto& [name, markup, width, pieces, size] : cases) {
        const rich_text text = parse_markup(markup);
        const text_flow flow = flow_text(text, width, grid);
        EXPECT_EQ(described(text, flow), pieces) << name;
        EXPECT_EQ(flow.size, size) << name;
    }
}

} // namespace
} // namespace girder::ui
