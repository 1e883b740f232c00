#include "app/config_model.h"

#include <gmock/gmock.h>

namespace {

using namespace tidelink;
using testing::ElementsAre;
using testing::IsEmpty;
using numbers = std::vector<std::uint32_t>;

const std::vector<SerialPortInfo> three_ports = {{.friendlyName = u"One", .portNumber = 1},
                                                 {.friendlyName = u"Three", .portNumber = 3},
                                                 {.friendlyName = u"", .portNumber = 10}};

LoadedSettings sharing(numbers ports)
{
    LoadedSettings loaded{.settings = DefaultServerSettings(), .failures = {}};
    loaded.settings.sharedPorts = std::move(ports);
    return loaded;
}

TEST(config_model_test, shows_the_shared_ports_or_every_port_where_all_are_shared)
{
    for (const auto& [stored, checked] : {std::pair<numbers, numbers>({}, {1, 3, 10}), {{10, 3}, {3, 10}}, {{7}, {}}}) {
        config_model model(sharing(stored));
        numbers shown;
        for (const port_row& row : model.rows_of(three_ports))
            if (row.checked)
                shown.push_back(row.number);
        EXPECT_EQ(shown, checked);
        EXPECT_EQ(model.initial_share_mode(), stored.empty() ? share_mode::all_ports : share_mode::listed_ports);
    }
}

TEST(config_model_test, stores_the_checked_ports_whichever_radio_button_is_checked)
{
    const config_model model(sharing({7}));
    for (const share_mode mode : {share_mode::all_ports, share_mode::listed_ports})
        for (const numbers& checked : {numbers{3, 1}, numbers{}})
            EXPECT_EQ(model.collect({.share = mode, .checked_ports = checked}).sharedPorts, checked);
    EXPECT_THAT(model.collect({.share = std::nullopt, .checked_ports = {3}}).sharedPorts, IsEmpty());
}

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
    const std::pair<std::vector<LoadFailure>, std::vector<std::u16string>> failures[] = {
        {{{.name = u"autoDiscovery", .text = {}}, {.name = u"language", .text = {}}}, {u"autoDiscovery", u"language"}},
        {{{.name = u"", .text = {}, .code = 5}},
         {u"securityDescriptor", u"autoDiscovery", u"sharedPorts", u"language"}},
    };
    for (const auto& [unreadable, named] : failures) {
        config_model model({.settings = DefaultServerSettings(), .failures = unreadable});
        const ServerSettings next = model.collect({});
        EXPECT_EQ(model.confirmations_for(next).replaced_values, named);
        model.accept(next);
        EXPECT_THAT(model.confirmations_for(next).replaced_values, IsEmpty());
    }
}

TEST(config_model_test, only_another_language_is_a_change)
{
    config_model model(sharing({}));
    EXPECT_FALSE(model.choose_language(u""));
    EXPECT_FALSE(model.dirty());
    EXPECT_TRUE(model.choose_language(u"en"));
    EXPECT_TRUE(model.dirty());
    EXPECT_EQ(model.settings().language, u"en");
}

TEST(config_model_test, a_changed_check_mark_is_told_from_selection_and_insertion)
{
    constexpr unsigned unchecked = 0x1000;
    constexpr unsigned checked = 0x2000;
    constexpr unsigned selected = 0x0003;
    EXPECT_TRUE(check_mark_changed(unchecked, checked));
    EXPECT_TRUE(check_mark_changed(checked | selected, unchecked | selected)) << "by keyboard";
    EXPECT_FALSE(check_mark_changed(checked, checked | selected));
    EXPECT_FALSE(check_mark_changed(checked, 0));
}

} // namespace
