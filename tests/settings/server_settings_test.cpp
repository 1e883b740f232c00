#include "settings/server_settings.h"
#include "settings/settings_key.h"
#include "update/json_reader.h"
#include "update/json_writer.h"

#include <gmock/gmock.h>

#include <tuple>

// With JSON as the store, which shows the fields as they are written.

namespace {

using namespace tidelink;
using girder::json::reader;
using girder::nsm::details::load_exception;
using testing::ElementsAre;

std::string changes(const ServerSettings& settings)
{
    girder::json::writer writer;
    WriteChanged(settings, DefaultServerSettings(), writer);
    return writer.finish();
}

TEST(server_settings_test, only_differences_are_written)
{
    ServerSettings settings = DefaultServerSettings();
    EXPECT_EQ(changes(settings), "{}");
    settings.autoDiscovery = false;
    EXPECT_EQ(changes(settings), R"({"autoDiscovery":false})");
    settings = DefaultServerSettings();
    settings.securityDescriptor[0] = u'd';
    settings.sharedPorts = {3, 1};
    EXPECT_EQ(changes(settings), R"*({"securityDescriptor":"d:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)",)*"
                                 R"*("sharedPorts":[3,1]})*");
}

TEST(server_settings_test, present_fields_override_and_unknown_ones_are_ignored)
{
    ServerSettings settings = DefaultServerSettings();
    Read(reader(R"({"other":true,"language":"de","Language":"fr","sharedPorts":[7,4294967295]})"), settings);
    ServerSettings expected = DefaultServerSettings();
    expected.language = u"de";
    expected.sharedPorts = {7, 0xFFFFFFFF};
    EXPECT_EQ(settings, expected);
    Read(reader(R"({"sharedPorts":"CgEAAAMAAP8="})"), settings);
    EXPECT_THAT(settings.sharedPorts, ElementsAre(0x10A, 0xFF000003)) << "little-endian bytes";
}

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
        const std::string stored = std::string("{\"") + field + "\":" + value + ",\"language\":\"de\"}";
        ServerSettings strict = DefaultServerSettings();
        try {
            Read(reader(stored), strict);
            ADD_FAILURE() << "not refused: " << value;
        } catch (const load_exception& error) {
            EXPECT_STREQ(error.what(), expected_error) << value;
        }
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
