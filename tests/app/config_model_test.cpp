#include "app/config_model.h"

#include <gmock/gmock.h>

namespace {

using namespace tidelink;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(config_model_test, dropping_absent_ports_needs_one_confirmation)
{
    LoadedSettings loaded{.settings = DefaultServerSettings(), .failures = {}};
    loaded.settings.sharedPorts = {3, 7, 8, 7};
    config_model model(loaded);
    model.rows_of({{.friendlyName = u"One", .portNumber = 1}, {.friendlyName = u"Three", .portNumber = 3}});
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

} // namespace
