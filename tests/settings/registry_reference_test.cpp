#include "base/utf.h"
#include "settings/server_settings.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>
#include <string>

namespace {

using namespace tidelink;
using testing::HasSubstr;
using testing::StartsWith;

/// The type of a field, by that of its default, and what people are told that the default is.
using description = std::pair<std::string, std::string>;
description described(std::u16string_view text)
{
    return {"REG_SZ", text.empty() ? "empty" : '`' + girder::to_utf8(text) + '`'};
}
description described(bool flag)
{
    return {"REG_DWORD", flag ? "1" : "0"};
}
description described(std::initializer_list<std::uint32_t> ports)
{
    return {"REG_BINARY", ports.size() == 0 ? "none" : "some"};
}

TEST(registry_reference_test, names_types_and_defaults_are_those_of_the_program)
{
    std::ifstream file(REGISTRY_REFERENCE);
    std::stringstream stream;
    stream << file.rdbuf();
    const std::string reference = stream.str();
    ASSERT_THAT(reference, StartsWith("# Registry reference"));
    girder::nsm::for_each_field(server_settings_fields, [&](const auto& row) {
        const auto [type, default_value] = described(row.default_value);
        const std::string begin = "\n| `" + std::string(row.name) + "` | " + type;
        const std::size_t at = reference.find(begin);
        ASSERT_NE(at, std::string::npos) << begin;
        const std::string line = reference.substr(at + 1, reference.find('\n', at + 1) - at - 1);
        EXPECT_THAT(line, HasSubstr(" | " + default_value + " | "));
    });
}

} // namespace
