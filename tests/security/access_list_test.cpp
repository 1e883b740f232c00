#include "security/access_fixtures.h"
#include "security/access_notation.h"
#include "security/access_summary.h"
#include "security/access_translation.h"

#include <gtest/gtest.h>

namespace {

using namespace tidelink;
using support::in_editor;
using support::list_of;

TEST(access_list_test, is_shown_saved_and_summed_up)
{
    for (const auto& [name, notation, editor, saved, who, lost] : support::access_fixtures()) {
        SCOPED_TRACE(name);
        const access_list stored = list_of(notation.value_or(""));
        EXPECT_EQ(summarise(notation ? std::optional(stored) : std::nullopt), who);
        EXPECT_EQ(ToEditorForm(stored), list_of(editor, in_editor));
        EXPECT_EQ(FromEditorForm(ToEditorForm(stored)), list_of(saved));
        EXPECT_EQ(lost_entries(stored), lost);
        EXPECT_EQ(lost_entries(list_of(saved)), 0U) << "asked once";
    }
}

} // namespace
