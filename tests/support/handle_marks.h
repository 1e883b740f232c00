#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <vector>

namespace support {

/// How far the process's tables of kernel, GDI and window-system objects are filled: the highest numbers that many
/// fresh objects get. The tables give out what is free from the bottom, so each lost object raises its number by one
/// place. (The system's own counters are not kept everywhere.)
inline std::array<std::uintptr_t, 3> handle_marks()
{
    constexpr int fresh = 512;
    const auto highest = [](auto create, auto destroy, std::uintptr_t mask) {
        std::vector<decltype(create())> objects;
        std::uintptr_t mark = 0;
        for (int i = 0; i < fresh; ++i) {
            objects.push_back(create());
            mark = std::max(mark, reinterpret_cast<std::uintptr_t>(objects.back()) & mask);
        }
        for (const auto object : objects)
            destroy(object);
        return mark;
    };
    constexpr std::uintptr_t whole = UINTPTR_MAX;
    constexpr std::uintptr_t index = 0xFFFF;
    return {highest([] { return ::CreateEventW(nullptr, TRUE, FALSE, nullptr); }, ::CloseHandle, whole),
            highest([] { return ::CreateSolidBrush(0x123456); }, ::DeleteObject, index),
            highest([] { return ::CreateMenu(); }, ::DestroyMenu, index)};
}

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
