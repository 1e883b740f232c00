#include "app/config_model.h"
#include "support/cases.h"

#include <gmock/gmock.h>

namespace {

using namespace tidelink;
using testing::ElementsAre;
using testing::IsEmpty;
using numbers = std::vector<std::uint32_t>;

const std::vector<SerialPortInfo> three_ports = {{.friendlyName = u"One", .portNumber = 1},
                                                 {.friendlyName = u"Three", .portNumber = 3},
                                                 {.friendlyName = u"", .portNumber = 10}};

LoadedSettings defaults()
{
    return {.settings = DefaultServerSettings(), .failures = {}};
}

LoadedSettings sharing(numbers ports)
{
    LoadedSettings loaded = defaults();
    loaded.settings.sharedPorts = std::move(ports);
    return loaded;
}

struct opening_case {
    const char* name;
    numbers stored;
    share_mode mode;
    numbers checked;
};

class opening_test : public testing::TestWithParam<opening_case> {};

TEST_P(opening_test, shows_what_is_stored)
{
    config_model model(sharing(GetParam().stored));
    numbers checked;
    for (const port_row& row : model.rows_of(three_ports))
        if (row.checked)
            checked.push_back(row.number);
    EXPECT_EQ(checked, GetParam().checked);
    EXPECT_EQ(model.initial_share_mode(), GetParam().mode);
    EXPECT_FALSE(model.dirty());
}

INSTANTIATE_TEST_SUITE_P(config_model, opening_test,
                         testing::ValuesIn(std::to_array<opening_case>({
                             {"nothing_stored_checks_every_port", {}, share_mode::all_ports, {1, 3, 10}},
                             {"stored_ports_alone", {10, 3}, share_mode::listed_ports, {3, 10}},
                             {"only_an_absent_port_checks_none", {7}, share_mode::listed_ports, {}},
                         })),
                         support::name_of_row);

struct collect_case {
    const char* name;
    std::optional<share_mode> share;
    numbers checked;
    numbers stored;
};

class collect_test : public testing::TestWithParam<collect_case> {};

TEST_P(collect_test, decides_the_list_to_store)
{
    const config_model model(sharing({7}));
    const control_state controls{
        .auto_discovery = false, .share = GetParam().share, .checked_ports = GetParam().checked};
    const ServerSettings next = model.collect(controls);
    EXPECT_EQ(next.sharedPorts, GetParam().stored);
    EXPECT_FALSE(next.autoDiscovery);
    EXPECT_EQ(next.securityDescriptor, DefaultServerSettings().securityDescriptor);
}

INSTANTIATE_TEST_SUITE_P(config_model, collect_test,
                         testing::ValuesIn(std::to_array<collect_case>({
                             {"listed", share_mode::listed_ports, {3, 1}, {3, 1}},
                             {"all_ports_keeps_the_check_marks", share_mode::all_ports, {1, 3}, {1, 3}},
                             {"no_radio_button_empties", std::nullopt, {1, 3}, {}},
                             {"nothing_checked_is_all", share_mode::listed_ports, {}, {}},
                         })),
                         support::name_of_row);

TEST(config_model_test, dropping_absent_ports_needs_one_confirmation)
{
    config_model model(sharing({3, 7, 8, 7}));
    model.rows_of(three_ports);
    const ServerSettings next = model.collect({.share = share_mode::listed_ports, .checked_ports = {1}});
    const save_confirmations needed = model.confirmations_for(next);
    EXPECT_THAT(needed.dropped_ports, ElementsAre(7, 8)) << "the present port 3 was unchecked knowingly";
    EXPECT_FALSE(needed.shares_every_port);
    EXPECT_TRUE(model.confirmations_for(model.collect({})).shares_every_port) << "an empty list shares them again";
    model.accept(next);
    EXPECT_THAT(model.confirmations_for(next).dropped_ports, IsEmpty());
}

TEST(config_model_test, replacing_unreadable_values_needs_one_confirmation)
{
    LoadedSettings loaded = defaults();
    loaded.failures = {{.name = u"autoDiscovery", .text = u"Boolean expected"},
                       {.name = u"language", .text = u"String expected"}};
    config_model model(std::move(loaded));
    model.touch();
    const ServerSettings next = model.collect({});
    EXPECT_THAT(model.confirmations_for(next).replaced_values, ElementsAre(u"autoDiscovery", u"language"));
    model.accept(next);
    EXPECT_THAT(model.confirmations_for(next).replaced_values, IsEmpty());
    EXPECT_FALSE(model.dirty());
}

TEST(config_model_test, a_key_that_could_not_be_read_stands_for_every_value)
{
    LoadedSettings loaded = defaults();
    loaded.failures = {{.name = u"", .text = u"RegCreateKeyExW", .code = 5}};
    const config_model model(std::move(loaded));
    EXPECT_THAT(model.confirmations_for(model.collect({})).replaced_values,
                ElementsAre(u"securityDescriptor", u"autoDiscovery", u"sharedPorts", u"language"));
}

TEST(config_model_test, only_another_language_is_a_change)
{
    config_model model(defaults());
    EXPECT_FALSE(model.choose_language(u""));
    EXPECT_FALSE(model.dirty());
    EXPECT_TRUE(model.choose_language(u"en"));
    EXPECT_TRUE(model.dirty());
    EXPECT_EQ(model.settings().language, u"en");
}

struct state_case {
    const char* name;
    unsigned old_state, new_state;
    bool changed;
};

class check_mark_test : public testing::TestWithParam<state_case> {};

TEST_P(check_mark_test, is_told_from_selection_and_insertion)
{
    EXPECT_EQ(check_mark_changed(GetParam().old_state, GetParam().new_state), GetParam().changed);
}

INSTANTIATE_TEST_SUITE_P(config_model, check_mark_test,
                         testing::ValuesIn(std::to_array<state_case>({
                             {"checked", 0x1000, 0x2000, true},
                             {"unchecked_by_keyboard_while_selected", 0x2003, 0x1003, true},
                             {"selected", 0x2000, 0x2003, false},
                             {"state_image_removed", 0x2000, 0x0000, false},
                         })),
                         support::name_of_row);

} // namespace
