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

/// What people are told that a default is.
std::string described(std::u16string_view text)
{
    return text.empty() ? "empty" : '`' + girder::to_utf8(text) + '`';
}

std::string described(bool flag)
{
    return flag ? "1" : "0";
}

std::string described(std::initializer_list<std::uint32_t> ports)
{
    return ports.size() == 0 ? "none" : "some";
}

const char* registry_type(const std::u16string& /*text*/)
{
    return "REG_SZ";
}

const char* registry_type(bool /*flag*/)
{
    return "REG_DWORD";
}

const char* registry_type(const std::vector<std::uint32_t>& /*ports*/)
{
    return "REG_BINARY";
}

TEST(registry_reference_test, names_types_and_defaults_are_those_of_the_program)
{
    std::ifstream file(REGISTRY_REFERENCE);
    std::stringstream stream;
    stream << file.rdbuf();
    const std::string reference = stream.str();
    ASSERT_THAT(reference, StartsWith("# Registry reference"));
    const ServerSettings settings = DefaultServerSettings();
    girder::nsm::for_each_field(server_settings_fields, [&](const auto& row) {
        const std::string begin = "\n| `" + std::string(row.name) + "` | " + registry_type(settings.*row.member);
        const std::size_t at = reference.find(begin);
        ASSERT_NE(at, std::string::npos) << begin;
        const std::string line = reference.substr(at + 1, reference.find('\n', at + 1) - at - 1);
        EXPECT_THAT(line, HasSubstr(" | " + described(row.default_value) + " | "));
    });
}

} // namespace
