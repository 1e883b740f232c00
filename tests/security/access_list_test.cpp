#include "security/access_fixtures.h"
#include "security/access_notation.h"
#include "security/access_summary.h"
#include "security/access_translation.h"
#include "support/cases.h"

namespace {

using namespace tidelink;
using support::in_editor;
using support::list_of;

class access_list_test : public testing::TestWithParam<support::access_fixture> {};

TEST_P(access_list_test, is_shown_saved_and_summed_up)
{
    const auto& [name, notation, editor, saved, who, lost] = GetParam();
    const access_list stored = list_of(notation.value_or(""));
    EXPECT_EQ(summarise(notation ? std::optional(stored) : std::nullopt), who);
    EXPECT_EQ(ToEditorForm(stored), list_of(editor, in_editor));
    EXPECT_EQ(FromEditorForm(ToEditorForm(stored)), list_of(saved));
    EXPECT_EQ(lost_entries(stored), lost);
    EXPECT_EQ(lost_entries(list_of(saved)), 0U) << "asked once";
}

INSTANTIATE_TEST_SUITE_P(fixtures, access_list_test, testing::ValuesIn(support::access_fixtures()),
                         support::name_of_row);

TEST(edited_list_test, keeps_the_order_of_what_has_the_right_and_drops_the_rest)
{
    for (const auto& [edited, stored] :
         {std::pair("+u1:2 -u2:fffffffe +u3:3", "own +u3"), std::pair("+WD:0", "own closed"),
          std::pair("?9 ?5", "own closed"), std::pair("+AU -u1 +WD/10 -AU", "own +AU -u1 +WD/10 -AU"),
          std::pair("-SU", "own -SU")})
        EXPECT_EQ(FromEditorForm(list_of(edited, in_editor)), list_of(stored)) << edited;
}

} // namespace
