#include "settings/server_settings.h"
#include "settings/settings_key.h"
#include "update/json_reader.h"

#include <gmock/gmock.h>

#include <tuple>

namespace {

using namespace tidelink;
using girder::json::reader;
using girder::nsm::details::load_exception;
using testing::ElementsAre;

TEST(server_settings_test, a_field_that_is_refused_leaves_the_others)
{
    for (const auto& [field, value, expected_error] : {
             std::tuple("autoDiscovery", R"("true")", "Boolean expected"),
             {"securityDescriptor", "1", "String expected"},
             {"sharedPorts", "3", "Array expected"},
             {"sharedPorts", R"("AQAAAAI=")", "Bad format"},
             {"sharedPorts", "[true]", "Number expected"},
             {"sharedPorts", "[4294967296]", "Number expected"},
         }) {
        const std::string stored = std::string("{\"") + field + "\":" + value + R"(,"language":"de"})";
        ServerSettings strict = DefaultServerSettings();
        EXPECT_THAT([&] { Read(reader(stored), strict); }, testing::ThrowsMessage<load_exception>(expected_error));
        EXPECT_EQ(strict, DefaultServerSettings()) << "read before the failure: nothing";

        ServerSettings tolerant = DefaultServerSettings();
        std::vector<std::string> failures;
        ReadTolerantly(reader(stored), tolerant, [&failures](std::string_view failed, const load_exception& error) {
            failures.push_back(std::string(failed) + ": " + error.what());
        });
        EXPECT_THAT(failures, ElementsAre(std::string(field) + ": " + expected_error));
        ServerSettings expected = DefaultServerSettings();
        expected.language = u"de";
        EXPECT_EQ(tolerant, expected) << value;
    }
}

TEST(settings_key_test, minor_versions_have_two_digits)
{
    EXPECT_EQ(SettingsKeyPath({.major = 12, .minor = 3}), u"Software\\Zelmark\\Tidelink Server 12.03");
    EXPECT_EQ(SettingsKeyPath({.major = 7, .minor = 10}), u"Software\\Zelmark\\Tidelink Server 7.10");
}

} // namespace
