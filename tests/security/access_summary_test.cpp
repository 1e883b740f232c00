#include "security/access_fixtures.h"
#include "security/access_summary.h"
#include "support/cases.h"

#include <gtest/gtest.h>

namespace tidelink {

void PrintTo(const access_summary& summary, std::ostream* out)
{
    *out << "reach " << static_cast<int>(summary.reach) << ", " << summary.allowed << " allowed, " << summary.denied
         << " denied";
}

} // namespace tidelink

namespace {

using namespace tidelink;

class access_summary_test : public testing::TestWithParam<support::access_fixture> {};

TEST_P(access_summary_test, tells_who_can_connect)
{
    const auto& stored = GetParam().stored;
    EXPECT_EQ(summarise(stored ? std::optional(support::list_of(*stored)) : std::nullopt), GetParam().who);
}

INSTANTIATE_TEST_SUITE_P(lists, access_summary_test, testing::ValuesIn(support::access_fixtures()),
                         support::name_of_row);

} // namespace
