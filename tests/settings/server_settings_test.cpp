#include "settings/server_settings.h"
#include "support/cases.h"
#include "update/json_reader.h"
#include "update/json_writer.h"

#include <gmock/gmock.h>

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

struct refused_case {
    const char* name;
    const char* field;
    const char* value;
    const char* error;
};

class refused_test : public testing::TestWithParam<refused_case> {};

TEST_P(refused_test, is_an_error_that_leaves_the_other_fields)
{
    const auto& [name, field, value, expected_error] = GetParam();
    const std::string stored = std::string("{\"") + field + "\":" + value + ",\"language\":\"de\"}";
    ServerSettings strict = DefaultServerSettings();
    try {
        Read(reader(stored), strict);
        ADD_FAILURE() << "not refused";
    } catch (const load_exception& error) {
        EXPECT_STREQ(error.what(), expected_error);
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
    EXPECT_EQ(tolerant, expected);
}

INSTANTIATE_TEST_SUITE_P(values, refused_test,
                         testing::ValuesIn(std::to_array<refused_case>({
                             {"text_as_boolean", "autoDiscovery", R"("true")", "Boolean expected"},
                             {"number_as_text", "securityDescriptor", "1", "String expected"},
                             {"number_as_list", "sharedPorts", "3", "Array expected"},
                             {"blob_of_no_whole_numbers", "sharedPorts", R"("AQAAAAI=")", "Bad format"},
                             {"element_of_another_kind", "sharedPorts", "[true]", "Number expected"},
                             {"element_above_32_bits", "sharedPorts", "[4294967296]", "Number expected"},
                         })),
                         support::name_of_row);

TEST(server_settings_test, something_else_than_an_object_is_refused)
{
    ServerSettings settings;
    EXPECT_THROW(Read(reader("true"), settings), load_exception);
}

} // namespace
