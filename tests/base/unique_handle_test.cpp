#include "base/unique_handle.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<int> closed;

struct number_traits {
    using raw_type = int;
    static constexpr raw_type empty() noexcept { return -1; }
    static void close(raw_type raw) noexcept { closed.push_back(raw); }
};
using unique_number = girder::unique_handle<number_traits>;

TEST(unique_handle_test, closes_exactly_once_on_every_way_out)
{
    {
        unique_number first(1);
        unique_number second(std::move(first));
        unique_number third(3);
        third = std::move(second);
        EXPECT_EQ(closed, std::vector{3});
        *third.put() = 4;
        EXPECT_EQ(closed, (std::vector{3, 1}));
        third.reset(0);
        unique_number released(5);
        EXPECT_EQ(released.release(), 5);
        EXPECT_FALSE(released);
    }
    EXPECT_EQ(closed, (std::vector{3, 1, 4, 0})) << "0 is a handle like any other, only empty() is not";
}

} // namespace
