#include "security/access_fixtures.h"
#include "security/access_translation.h"
#include "support/cases.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace tidelink;
using support::list_of;
using support::notation_of;

class access_translation_test : public testing::TestWithParam<support::access_fixture> {
protected:
    const access_list stored_ = list_of(GetParam().stored.value_or(""));
};

TEST_P(access_translation_test, gives_the_editors_form_and_the_form_to_store)
{
    const access_list edited = ToEditorForm(stored_);
    EXPECT_EQ(notation_of(edited), GetParam().editor);
    EXPECT_EQ(notation_of(FromEditorForm(edited)), GetParam().saved);
    EXPECT_EQ(lost_entries(stored_), GetParam().lost);
}

TEST_P(access_translation_test, what_was_saved_loses_nothing_more)
{
    const access_list saved = list_of(GetParam().saved);
    EXPECT_EQ(lost_entries(saved), 0U);
    EXPECT_EQ(ToEditorForm(FromEditorForm(ToEditorForm(saved))), ToEditorForm(saved));
}

INSTANTIATE_TEST_SUITE_P(lists, access_translation_test, testing::ValuesIn(support::access_fixtures()),
                         support::name_of_row);

struct edited_case {
    const char* name;
    const char* edited;
    const char* stored;
};

class edited_list_test : public testing::TestWithParam<edited_case> {};

TEST_P(edited_list_test, is_stored)
{
    EXPECT_EQ(notation_of(FromEditorForm(list_of(GetParam().edited))), GetParam().stored);
}

INSTANTIATE_TEST_SUITE_P(lists, edited_list_test,
                         testing::ValuesIn(std::to_array<edited_case>({
                             {"entries_without_the_right_are_dropped", "+BA:2 -BU:fffffffe +u1:3", "+SU:c0100004 +u1"},
                             {"only_entries_without_the_right", "+WD:0", "+SU:c0100004 -WD:c0000000"},
                             {"other_kinds_are_dropped", "?9:1 ?5:1", "+SU:c0100004 -WD:c0000000"},
                             {"the_order_is_kept_as_given", "+BA:1 -BU:1 +WD:1/10 -BA:1",
                              "+SU:c0100004 +BA -BU +WD/10 -BA"},
                             {"the_service_can_be_denied_behind_its_own_entry", "-SU:1", "+SU:c0100004 -SU"},
                         })),
                         support::name_of_row);

} // namespace
