#include "ui/layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace girder::ui {
namespace {

using testing::ElementsAreArray;

box wide(int id)
{
    return control_box(id, {.width = 60, .height = 20});
}
box small(int id)
{
    return control_box(id, {.width = 20, .height = 10});
}
/// 100 x 40, down to 50 x 10.
box list(int id)
{
    return shrinking_to({.width = 50, .height = 10}, growing_both(control_box(id, {.width = 100, .height = 40})));
}
/// An area of 2400 square pixels in full lines of 10.
box text(int id, int natural_width)
{
    return wrapped_box(id, natural_width, [](int width) { return (240 + width - 1) / width * 10; });
}

struct arrange_case {
    const char* name;
    box root;
    extent natural;
    extent available;
    std::vector<placement> expected;
};

// clang-format off
const arrange_case arrange_cases[] = {
    {"row_centres_and_spaces", row({wide(1), small(2)}, 5),
     {85, 20}, {85, 20}, {{1, {0, 0, 60, 20}}, {2, {65, 5, 20, 10}}}},
    {"filler_aligns_right", row({small(1), filler(), small(2)}, 5),
     {50, 10}, {100, 10}, {{1, {0, 0, 20, 10}}, {2, {80, 0, 20, 10}}}},
    {"row_in_a_column_gets_the_width", column({wide(1), row({filler(), small(2)}, 0)}, 0),
     {60, 30}, {60, 30}, {{1, {0, 0, 60, 20}}, {2, {40, 20, 20, 10}}}},
    {"what_grows_high_takes_the_rest", column({small(1), list(2), small(3)}, 0),
     {100, 60}, {120, 100}, {{1, {0, 0, 20, 10}}, {2, {0, 10, 120, 80}}, {3, {0, 90, 20, 10}}}},
    {"lack_of_room_shrinks_what_can", column({small(1), list(2), small(3)}, 0),
     {100, 60}, {60, 35}, {{1, {0, 0, 20, 10}}, {2, {0, 10, 60, 15}}, {3, {0, 25, 20, 10}}}},
    {"padding_and_gaps_stay_as_they_are", padded(column({growing_both(small(1)), small(2)}, 3), {3, 5, 7, 9}),
     {30, 37}, {60, 60}, {{1, {3, 5, 50, 33}}, {2, {3, 41, 20, 10}}}},
    {"frame_surrounds_its_content", framed(9, column({small(1)}, 0), {7, 11, 7, 7}, 10),
     {34, 28}, {34, 28}, {{9, {0, 0, 34, 28}}, {1, {7, 11, 20, 10}}}},
    {"stretched_wrapped_text_becomes_lower", column({growing_wide(text(1, 120)), small(2)}, 0),
     {120, 30}, {240, 20}, {{1, {0, 0, 240, 10}}, {2, {0, 10, 20, 10}}}},
};
// clang-format on

TEST(arrange_test, places)
{
    for (const auto& [name, root, natural, available, expected] : arrange_cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(natural_size(root), natural);
        EXPECT_THAT(arrange(root, {.x = 0, .y = 0, .width = available.width, .height = available.height}),
                    ElementsAreArray(expected));
    }
}

TEST(fit_scrolled_test, shows_a_part_beside_or_above_a_bar_and_the_whole_where_there_is_room)
{
    constexpr extent bars{5, 6};
    const box of_60_by_30 = column({wide(1), small(2)}, 0);
    EXPECT_EQ(fit_scrolled(of_60_by_30, {90, 40}, bars), (scrolled_fit{{90, 40}, {90, 40}}));
    EXPECT_EQ(fit_scrolled(of_60_by_30, {65, 29}, bars), (scrolled_fit{{60, 29}, {60, 30}})) << "beside a bar";
    EXPECT_EQ(fit_scrolled(of_60_by_30, {59, 36}, bars), (scrolled_fit{{59, 30}, {60, 30}})) << "above a bar";
    EXPECT_EQ(fit_scrolled(of_60_by_30, {59, 35}, bars), (scrolled_fit{{54, 29}, {60, 30}})) << "a bar for a bar";
    EXPECT_EQ(fit_scrolled(list(1), {50, 10}, bars), (scrolled_fit{{50, 10}, {50, 10}})) << "what can shrink does";
}

TEST(centred_test, goes_over_its_owner_but_never_off_the_screen)
{
    constexpr area screen{0, 0, 1000, 700};
    EXPECT_EQ(centred({100, 50}, {200, 200, 300, 100}, screen), (area{300, 225, 100, 50}));
    EXPECT_EQ(centred({100, 50}, {950, 200, 300, 100}, screen), (area{900, 225, 100, 50}));
    EXPECT_EQ(centred({100, 50}, {-500, 0, 100, 50}, {-800, 0, 800, 600}), (area{-500, 0, 100, 50}));
}

} // namespace
} // namespace girder::ui
