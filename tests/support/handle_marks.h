#pragma once

#include "handle_figures/handle_figures.h"

#include <gtest/gtest.h>

#include <chrono>

namespace support {

using handle_figures::handle_marks;

/// 200 openings of a dialog leave no object behind, once the system's own threads have let go of theirs. The first ones
/// make what the system keeps.
template <typename Open>
void expect_no_lost_handles(Open open)
{
    constexpr int first_ones = 3;
    constexpr int openings = 200;
    for (int i = 0; i < first_ones; ++i)
        open();
    const auto before = handle_marks();
    for (int i = 0; i < openings; ++i)
        open();
    auto after = handle_marks();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (after > before && std::chrono::steady_clock::now() < deadline)
        after = handle_marks();
    for (std::size_t kind = 0; kind < before.size(); ++kind)
        EXPECT_LE(after[kind], before[kind]) << "kernel, GDI, window system: kind " << kind;
}

} // namespace support
