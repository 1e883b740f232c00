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

class unique_handle_test : public testing::Test {
protected:
    void SetUp() override { closed.clear(); }
};

TEST_F(unique_handle_test, closes_exactly_once_on_every_way_out)
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
    }
    EXPECT_EQ(closed, (std::vector{3, 1, 4, 0})) << "0 is a handle like any other, only empty() is not";
}

TEST_F(unique_handle_test, released_handles_are_not_closed)
{
    unique_number number(1);
    EXPECT_EQ(number.release(), 1);
    EXPECT_FALSE(number);
    number.reset();
    EXPECT_TRUE(closed.empty());
}

static_assert(!std::is_convertible_v<int, unique_number>);
static_assert(!std::is_convertible_v<unique_number, int>);
static_assert(!std::is_copy_constructible_v<unique_number>);

} // namespace
