#include "ui/layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

namespace girder::ui {

void PrintTo(const placement& value, std::ostream* out)
{
    const auto& [x, y, width, height] = value.place;
    *out << value.control << " at " << x << ',' << y << ' ' << width << 'x' << height;
}

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
    {"row_keeps_a_child_at_its_top", row({wide(1), at_top(small(2))}, 0),
     {80, 20}, {80, 20}, {{1, {0, 0, 60, 20}}, {2, {60, 0, 20, 10}}}},
    {"filler_aligns_right", row({small(1), filler(), small(2)}, 5),
     {50, 10}, {100, 10}, {{1, {0, 0, 20, 10}}, {2, {80, 0, 20, 10}}}},
    {"odd_pixels_are_not_lost", row({growing_wide(small(1)), growing_wide(small(2)), growing_wide(small(3))}, 0),
     {60, 10}, {100, 10}, {{1, {0, 0, 33, 10}}, {2, {33, 0, 33, 10}}, {3, {66, 0, 34, 10}}}},
    {"equal_widths_follow_the_widest", with_equal_widths(row({small(1), wide(2)}, 4)),
     {124, 20}, {124, 20}, {{1, {0, 5, 60, 10}}, {2, {64, 0, 60, 20}}}},
    {"column_keeps_natural_widths", column({small(1), growing_wide(small(2))}, 3),
     {20, 23}, {50, 23}, {{1, {0, 0, 20, 10}}, {2, {0, 13, 50, 10}}}},
    {"row_in_a_column_gets_the_width", column({wide(1), row({filler(), small(2)}, 0)}, 0),
     {60, 30}, {60, 30}, {{1, {0, 0, 60, 20}}, {2, {40, 20, 20, 10}}}},
    {"what_grows_high_takes_the_rest", column({small(1), list(2), small(3)}, 0),
     {100, 60}, {120, 100}, {{1, {0, 0, 20, 10}}, {2, {0, 10, 120, 80}}, {3, {0, 90, 20, 10}}}},
    {"lack_of_room_shrinks_what_can", column({small(1), list(2), small(3)}, 0),
     {100, 60}, {60, 35}, {{1, {0, 0, 20, 10}}, {2, {0, 10, 60, 15}}, {3, {0, 25, 20, 10}}}},
    {"lack_is_shared_in_proportion", row({list(1), shrinking_to({90, 10}, wide(2))}, 0),
     {160, 40}, {140, 40}, {{1, {0, 0, 80, 40}}, {2, {80, 10, 60, 20}}}},
    {"never_below_the_least_size", column({small(1), list(2)}, 0),
     {100, 50}, {10, 10}, {{1, {0, 0, 20, 10}}, {2, {0, 10, 50, 10}}}},
    {"padding_and_gaps_stay_as_they_are", padded(column({growing_both(small(1)), small(2)}, 3), {3, 5, 7, 9}),
     {30, 37}, {60, 60}, {{1, {3, 5, 50, 33}}, {2, {3, 41, 20, 10}}}},
    {"frame_surrounds_its_content", framed(9, column({small(1)}, 0), {7, 11, 7, 7}, 10),
     {34, 28}, {34, 28}, {{9, {0, 0, 34, 28}}, {1, {7, 11, 20, 10}}}},
    {"frame_is_as_wide_as_its_caption", framed(9, column({small(1)}, 0), {7, 11, 7, 7}, 50),
     {50, 28}, {0, 0}, {{9, {0, 0, 50, 28}}, {1, {7, 11, 20, 10}}}},
    {"wrapped_text_is_as_high_as_its_width_needs", column({text(1, 120), small(2)}, 0),
     {120, 30}, {120, 30}, {{1, {0, 0, 120, 20}}, {2, {0, 20, 20, 10}}}},
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

TEST(natural_size_test, limited_width_wraps_text_into_more_lines)
{
    const box root = shrinking_to({.width = 60, .height = 0}, text(1, 240));
    EXPECT_EQ(natural_size(root), (extent{240, 10}));
    EXPECT_EQ(natural_size(root, 80), (extent{80, 30}));
    EXPECT_EQ(natural_size(root, 10), (extent{60, 40}));
}

/// A tree of at least 60 x 30, in a window with bars of 5 and 6 pixels.
TEST(fit_scrolled_test, shows_a_part_beside_or_above_a_bar_and_the_whole_where_there_is_room)
{
    const struct {
        const char* name;
        extent inside;
        scrolled_fit expected;
    } cases[] = {
        {"all_where_it_fits", {60, 30}, {{60, 30}, {60, 30}}},
        {"the_whole_room_where_there_is_more", {90, 40}, {{90, 40}, {90, 40}}},
        {"a_part_downwards_beside_a_bar", {65, 29}, {{60, 29}, {60, 30}}},
        {"a_part_across_above_a_bar", {59, 36}, {{59, 30}, {60, 30}}},
        {"a_bar_downwards_for_the_room_of_the_other", {59, 35}, {{54, 29}, {60, 30}}},
        {"a_bar_across_for_the_room_of_the_other", {64, 29}, {{59, 23}, {60, 30}}},
    };
    for (const auto& [name, inside, expected] : cases)
        EXPECT_EQ(fit_scrolled(column({wide(1), small(2)}, 0), inside, {5, 6}), expected) << name;
    EXPECT_EQ(fit_scrolled(list(1), {50, 10}, {5, 6}), (scrolled_fit{{50, 10}, {50, 10}})) << "what can shrink does";
}

TEST(centred_test, goes_over_its_owner_but_never_off_the_screen)
{
    const struct {
        const char* name;
        extent size;
        area around;
        area bounds;
        area expected;
    } cases[] = {
        {"over_its_owner", {100, 50}, {200, 200, 300, 100}, {0, 0, 1000, 700}, {300, 225, 100, 50}},
        {"owner_beyond_the_right_edge", {100, 50}, {950, 200, 300, 100}, {0, 0, 1000, 700}, {900, 225, 100, 50}},
        {"owner_above_a_task_bar", {100, 50}, {200, -80, 100, 60}, {0, 40, 1000, 660}, {200, 40, 100, 50}},
        {"on_a_second_screen", {100, 50}, {-500, 0, 100, 50}, {-800, 0, 800, 600}, {-500, 0, 100, 50}},
        {"larger_than_the_screen", {1200, 900}, {0, 0, 100, 100}, {0, 0, 1000, 700}, {0, 0, 1200, 900}},
    };
    for (const auto& [name, size, around, bounds, expected] : cases)
        EXPECT_EQ(centred(size, around, bounds), expected) << name;
}

} // namespace
} // namespace girder::ui
