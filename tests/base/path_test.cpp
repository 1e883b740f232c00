#include "base/path.h"

#include <gtest/gtest.h>

namespace {

using namespace girder;

TEST(path_test, is_taken_apart_at_its_last_separators)
{
    const struct {
        std::u16string_view path, folder, name;
    } cases[] = {
        {u"C:\\Tidelink\\a.exe", u"C:\\Tidelink", u"a.exe"},
        {u"C:/Tidelink\\/a.exe", u"C:/Tidelink", u"a.exe"},
        {u"C:\\a.exe", u"C:", u"a.exe"},
        {u"\\\\a.exe", u"", u"a.exe"},
        {u"a.exe", u"", u"a.exe"},
        {u"Tidelink\\", u"Tidelink", u""},
    };
    for (const auto& [path, folder, name] : cases) {
        EXPECT_EQ(folder_of(path), folder);
        EXPECT_EQ(file_name_of(path), name);
    }
}

TEST(path_test, is_joined_by_one_separator_where_that_is_missing)
{
    EXPECT_EQ(joined_path(u"C:\\Tidelink", u"a"), u"C:\\Tidelink\\a");
    EXPECT_EQ(joined_path(u"Tidelink/", u"a"), u"Tidelink/a");
    EXPECT_EQ(joined_path(u"C:", u"a"), u"C:a");
    EXPECT_EQ(joined_path(u"1:", u"a"), u"1:\\a");
    EXPECT_EQ(joined_path(u"", u"a"), u"a");
}

} // namespace
