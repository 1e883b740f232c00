#include "serialisation/field_matcher.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>

namespace {

using girder::nsm::field_matcher;

constexpr std::array<std::string_view, 4> names = {"securityDescriptor", "autoDiscovery", "sharedPorts", "language"};

TEST(field_matcher_test, expected_order_never_changes_what_is_found)
{
    std::array<std::string, 7> delivered = {"autoDiscovery",      "language",    "LANGUAGE", "other",
                                            "securityDescriptor", "sharedPorts", ""};
    std::ranges::sort(delivered);
    do {
        field_matcher by_declaration(names, field_matcher::expected_order::declaration);
        field_matcher by_name(names, field_matcher::expected_order::name);
        for (const std::string& name : delivered) {
            const auto found = by_declaration.match(name);
            ASSERT_EQ(found, by_name.match(name)) << name;
            const auto* const wanted = std::ranges::find(names, std::string_view(name));
            ASSERT_EQ(found.has_value(), wanted != names.end()) << name;
            if (found)
                ASSERT_EQ(names[*found], name);
        }
    } while (std::ranges::next_permutation(delivered).found);
}

} // namespace
