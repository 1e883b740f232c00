#include "fixture.h"
#include "ui_driver/remote_memory.h"

#include <map>
#include <utility>

namespace {

using namespace e2e;

constexpr int settings_frame = 1015;
constexpr int every_control[] = {1,    2,    3,    1001, 1002, 1003, 1005,        1006,
                                 1007, 1008, 1010, 1013, 1014, 1015, id::language};

using layout_test = machine_test;

std::map<int, RECT> places_in(const ui_driver::dialog& window)
{
    std::map<int, RECT> places;
    for (const int each : every_control) {
        RECT place{};
        ::GetWindowRect(window.item(each).handle(), &place);
        ::MapWindowPoints(nullptr, window.handle(), reinterpret_cast<POINT*>(&place), 2);
        places[each] = place;
    }
    return places;
}

bool contains(const RECT& outer, const RECT& inner)
{
    return inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right &&
           inner.bottom <= outer.bottom;
}

void expect_tidy(const ui_driver::dialog& window)
{
    RECT client{};
    ::GetClientRect(window.handle(), &client);
    const auto places = places_in(window);
    for (const auto& [control, place] : places) {
        EXPECT_TRUE(contains(client, place)) << control;
        EXPECT_TRUE(window.item(control).visible()) << control;
        for (const auto& [other, other_place] : places) {
            RECT common{};
            if (control < other && control != settings_frame && other != settings_frame)
                EXPECT_FALSE(::IntersectRect(&common, &place, &other_place)) << control << " and " << other;
        }
    }
    for (const int framed : {1005, 1006, 1007, 1008, 1010, id::language})
        EXPECT_TRUE(contains(places.at(settings_frame), places.at(framed))) << framed;
}

/// As the system does when the window comes from a screen of one density onto a screen of another.
void change_dpi(const ui_driver::dialog& window, WORD from, WORD to)
{
    RECT place{};
    ::GetWindowRect(window.handle(), &place);
    const RECT suggested{.left = 0,
                         .top = 0,
                         .right = ::MulDiv(place.right - place.left, to, from),
                         .bottom = ::MulDiv(place.bottom - place.top, to, from)};
    const ui_driver::remote_memory memory(window.handle(), sizeof suggested);
    memory.write(&suggested, sizeof suggested);
    ui_driver::send(window.handle(), WM_DPICHANGED, MAKEWPARAM(to, to), reinterpret_cast<LPARAM>(memory.address()));
}

TEST_F(layout_test, nothing_overlaps_or_is_cut_at_any_density)
{
    const utility program;
    const ui_driver::dialog window = program.window();
    expect_tidy(window);
    const RECT list = places_in(window).at(id::port_list);
    WORD before = 96;
    for (const WORD dpi : {WORD{120}, WORD{192}, WORD{96}}) {
        SCOPED_TRACE(dpi);
        change_dpi(window, std::exchange(before, dpi), dpi);
        expect_tidy(window);
        const RECT scaled = places_in(window).at(id::port_list);
        EXPECT_NEAR(scaled.right - scaled.left, (list.right - list.left) * dpi / 96, 8 * dpi / 96);
    }
}

} // namespace
