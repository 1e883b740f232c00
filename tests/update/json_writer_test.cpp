#include "settings/server_settings.h"
#include "update/json_reader.h"
#include "update/json_writer.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <span>

namespace {

using namespace girder;
using json::reader;
using json::writer;

constexpr nsm::guid some_guid{0x35B11BAB, 0x5238, 0x4E93, {0xB0, 0x6A, 0x92, 0x33, 0x2C, 0x5D, 0x20, 0xFA}};

TEST(json_writer_test, is_compact)
{
    writer out;
    out.write_string("text", u"a\"b\\c\td\ne\rf\u00E9/\x01");
    out.write_boolean("yes", true);
    out.write_null({"none", nsm::value_name::type_code_of_suffix(3)});
    out.begin_array("list", 3);
    out.write_signed({}, -1);
    out.begin_structure({}, 1);
    out.write_unsigned("n", std::numeric_limits<std::uint64_t>::max());
    out.write_guid("id", some_guid);
    out.end_structure();
    constexpr std::array bytes{std::byte{0xFB}, std::byte{0xFF}, std::byte{0}, std::byte{37}};
    for (const std::size_t size : {0U, 1U, 2U, 3U, 4U})
        out.write_binary({}, std::span(bytes).first(size));
    out.end_array();
    out.write_double("nan", std::nan(""));
    out.write_double("low", -std::numeric_limits<double>::infinity());
    out.write_float("no text for it", std::numeric_limits<float>::infinity());
    out.begin_structure("empty", 0);
    out.end_structure();
    EXPECT_EQ(out.finish(),
              "{\"text\":\"a\\\"b\\\\c\\td\\ne\\rf\xC3\xA9/\x01\",\"yes\":true,\"none@3\":null,"
              "\"list\":[-1,{\"n\":18446744073709551615,"
              "\"id\":\"{35B11BAB-5238-4E93-B06A-92332C5D20FA}\"},\"\",\"+w==\",\"+/8=\",\"+/8A\",\"+/8AJQ==\"],"
              "\"nan\":-nan,\"low\":-inf,\"no text for it\":null,\"empty\":{}}");
}

TEST(json_writer_test, a_date_reads_back)
{
    const file_time written{unix_epoch_ticks + 1'750'852'800 * ticks_per_second};
    writer out;
    out.write_date("date", written);
    const std::string text = out.finish();
    EXPECT_EQ(reader(text).find("date").as_date(), written);
}

TEST(json_writer_test, settings_go_through_it)
{
    using namespace tidelink;
    const ServerSettings written{.securityDescriptor = u"D:(A;;\"\n", .sharedPorts = {3, 1}, .language = u"\u65E5"};
    writer out;
    WriteAll(written, out);
    const std::string text = out.finish();
    EXPECT_EQ(text, "{\"securityDescriptor\":\"D:(A;;\\\"\\n\",\"autoDiscovery\":false,\"sharedPorts\":[3,1],"
                    "\"language\":\"\xE6\x97\xA5\"}");
    ServerSettings read = DefaultServerSettings();
    Read(reader(text), read);
    EXPECT_EQ(read, written);
}

} // namespace
