#include "settings/server_settings.h"
#include "support/cases.h"
#include "support/memory_reader.h"
#include "support/recording_writer.h"

#include <gmock/gmock.h>

namespace {

using namespace tidelink;
using girder::nsm::details::load_exception;
using support::memory_reader;
using support::memory_value;
using members = support::memory_value::members;
using elements = support::memory_value::elements;
using support::recording_writer;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint32_t binary_arrays = girder::nsm::scalar_arrays_as_binary;

std::vector<std::byte> bytes(std::initializer_list<int> values)
{
    std::vector<std::byte> out;
    for (const int value : values)
        out.push_back(static_cast<std::byte>(value));
    return out;
}

std::vector<std::string> changed_lines(const ServerSettings& settings, std::uint32_t capabilities = binary_arrays)
{
    recording_writer writer(capabilities);
    WriteChanged(settings, DefaultServerSettings(), writer);
    return writer.lines;
}

TEST(server_settings_test, only_differences_are_written)
{
    ServerSettings settings = DefaultServerSettings();
    EXPECT_THAT(changed_lines(settings), IsEmpty());
    settings.autoDiscovery = false;
    EXPECT_THAT(changed_lines(settings), ElementsAre("autoDiscovery: boolean false"));
    settings = DefaultServerSettings();
    settings.securityDescriptor[0] = u'd';
    EXPECT_THAT(changed_lines(settings),
                ElementsAre("securityDescriptor: string d:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)"));
}

TEST(server_settings_test, ports_keep_their_order_in_both_representations)
{
    ServerSettings settings = DefaultServerSettings();
    settings.sharedPorts = {3, 1};
    EXPECT_THAT(changed_lines(settings), ElementsAre("sharedPorts: binary 3 0 0 0 1 0 0 0"));
    EXPECT_THAT(changed_lines(settings, 0), ElementsAre("sharedPorts: array 2", ": unsigned 3", ": unsigned 1", "end"));
}

TEST(server_settings_test, all_fields_are_written_in_declaration_order)
{
    recording_writer writer(binary_arrays);
    WriteAll(DefaultServerSettings(), writer);
    EXPECT_THAT(writer.lines, ElementsAre("securityDescriptor: string D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)",
                                          "autoDiscovery: boolean true", "sharedPorts: binary", "language: string "));
}

TEST(server_settings_test, present_fields_override_in_any_order_and_unknown_ones_are_ignored)
{
    const memory_value stored{members{{"other", {true}},
                                      {"language", {std::u16string(u"de")}},
                                      {"Language", {std::u16string(u"fr")}},
                                      {"sharedPorts", {bytes({0x0A, 1, 0, 0, 3, 0, 0, 0xFF})}}}};
    for (const std::uint32_t capabilities : {0U, std::uint32_t{girder::nsm::members_in_name_order}}) {
        ServerSettings settings = DefaultServerSettings();
        Read(memory_reader(stored, capabilities), settings);
        ServerSettings expected = DefaultServerSettings();
        expected.language = u"de";
        expected.sharedPorts = {0x10A, 0xFF000003};
        EXPECT_EQ(settings, expected);
    }
}

TEST(server_settings_test, ports_may_be_an_array)
{
    const memory_value stored{members{{"sharedPorts", {elements{{std::uint64_t{7}}, {std::uint64_t{0xFFFFFFFF}}}}}}};
    ServerSettings settings;
    Read(memory_reader(stored), settings);
    EXPECT_THAT(settings.sharedPorts, ElementsAre(7, 0xFFFFFFFF));
}

struct refused_case {
    const char* name;
    std::string field;
    memory_value value;
    const char* error;
};

class refused_test : public testing::TestWithParam<refused_case> {};

TEST_P(refused_test, is_an_error_that_leaves_the_other_fields)
{
    const memory_value stored{members{{GetParam().field, GetParam().value}, {"language", {std::u16string(u"de")}}}};
    const memory_reader source(stored);
    const std::string expected_error = GetParam().error;
    ServerSettings strict = DefaultServerSettings();
    try {
        Read(source, strict);
        ADD_FAILURE() << "not refused";
    } catch (const load_exception& error) {
        EXPECT_EQ(error.what(), expected_error);
    }
    EXPECT_EQ(strict, DefaultServerSettings()) << "read before the failure: nothing";

    ServerSettings tolerant = DefaultServerSettings();
    std::vector<std::string> failures;
    ReadTolerantly(source, tolerant, [&failures](std::string_view name, const load_exception& error) {
        failures.push_back(std::string(name) + ": " + error.what());
    });
    EXPECT_THAT(failures, ElementsAre(GetParam().field + ": " + expected_error));
    ServerSettings expected = DefaultServerSettings();
    expected.language = u"de";
    EXPECT_EQ(tolerant, expected);
}

INSTANTIATE_TEST_SUITE_P(
    values, refused_test,
    testing::ValuesIn(std::vector<refused_case>{
        {"text_as_boolean", "autoDiscovery", {std::u16string(u"true")}, "Boolean expected"},
        {"number_as_text", "securityDescriptor", {std::uint64_t{1}}, "String expected"},
        {"text_as_list", "sharedPorts", {std::u16string(u"3")}, "Array expected"},
        {"blob_of_no_whole_numbers", "sharedPorts", {bytes({1, 0, 0, 0, 2})}, "Bad format"},
        {"element_of_another_kind", "sharedPorts", {elements{{true}}}, "Number expected"},
        {"element_above_32_bits", "sharedPorts", {elements{{std::uint64_t{0x100000000}}}}, "Number expected"},
    }),
    support::name_of_row);

TEST(server_settings_test, something_else_than_an_object_is_refused)
{
    ServerSettings settings;
    EXPECT_THROW(Read(memory_reader({true}), settings), load_exception);
}

} // namespace
