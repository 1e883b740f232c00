#include "localisation/corrections.h"

#include <gtest/gtest.h>

namespace tidelink {
namespace {

TEST(corrections_test, are_exported_in_exactly_these_bytes)
{
    StringTable table;
    table.correct(u"Not kept", u"The mode is off.");
    table.set_corrections_mode(true);
    table.correct(u"Stop", u"&Halt");
    table.correct(u"Stop", u"\"&Halt\"");
    table.correct(u"A&B\"C", u"1\r\n2\t3 <b> \\n \u00E9\U0001F600");

    EXPECT_EQ(corrections_header.size(), 55U);
    const std::string file = std::string(corrections_header) +
                             corrections_module(u"folder\\tl_server_config.exe", table.corrections()) +
                             std::string(corrections_trailer);
    EXPECT_EQ(file,
              "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n"
              "<Corrections>\r\n"
              "  <Module name=\"tl_server_config.exe\">\r\n"
              "    <String id=\"A&amp;B&amp;quot;C\" value=\"1\\r\\n2\\t3 <b> \\n \xC3\xA9\xF0\x9F\x98\x80\"/>\r\n"
              "    <String id=\"Stop\" value=\"&amp;quot;&amp;Halt&amp;quot;\"/>\r\n"
              "  </Module>\r\n"
              "</Corrections>\r\n");
}

} // namespace
} // namespace tidelink
