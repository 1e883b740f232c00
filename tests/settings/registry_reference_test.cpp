#include "base/utf.h"
#include "settings/server_settings.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>
#include <string>
#include <type_traits>

namespace {

using namespace tidelink;

/// The registry type of a setting with that default, and what people are told that the default is.
template <typename Value>
std::pair<std::string, std::string> described(const Value& default_value)
{
    if constexpr (std::is_same_v<Value, bool>)
        return {"REG_DWORD", default_value ? "1" : "0"};
    else if constexpr (std::is_same_v<Value, std::u16string_view>)
        return {"REG_SZ", default_value.empty() ? "empty" : '`' + girder::to_utf8(default_value) + '`'};
    else
        return {"REG_BINARY", default_value.size() == 0 ? "none" : "some"};
}

TEST(registry_reference_test, names_types_and_defaults_are_those_of_the_program)
{
    std::ifstream file(REGISTRY_REFERENCE);
    std::stringstream stream;
    stream << file.rdbuf();
    const std::string reference = stream.str();
    girder::nsm::for_each_field(server_settings_fields, [&](const auto& row) {
        const auto [type, default_value] = described(row.default_value);
        const std::string begin = "\n| `" + std::string(row.name) + "` | " + type;
        const std::size_t at = reference.find(begin);
        ASSERT_NE(at, std::string::npos) << begin;
        const std::string line = reference.substr(at + 1, reference.find('\n', at + 1) - at - 1);
        EXPECT_THAT(line, testing::HasSubstr(" | " + default_value + " | "));
    });
}

} // namespace
