#pragma once

#include <gtest/gtest.h>

namespace support {

/// Names each instance of a table test after the `name` member of its row.
inline constexpr auto name_of_row = [](const auto& info) { return std::string(info.param.name); };

} // namespace support
