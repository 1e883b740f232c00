#include "registry/single_value_reader.h"
#include "registry/stored_value.h"
#include "serialisation/date_text.h"
#include "serialisation/field_values.h"
#include "serialisation/load_exception.h"

#include <gmock/gmock.h>

#include <functional>
#include <optional>
#include <tuple>

namespace {

using girder::nsm::parse_date;
using girder::nsm::details::load_exception;
using girder::registry_ex::stored_value;
namespace value_type = girder::registry_ex::value_type;

stored_value made(std::uint32_t type, const void* data, std::size_t size)
{
    const auto* const bytes = static_cast<const std::byte*>(data);
    return {.type = type, .data = {bytes, bytes + size}};
}

stored_value text(std::u16string_view value)
{
    return made(value_type::text, value.data(), value.size() * sizeof(char16_t));
}

stored_value number(std::uint32_t type, std::uint64_t value, std::size_t size)
{
    return made(type, &value, size);
}

TEST(stored_value_test, a_refusal_names_what_was_expected)
{
    const std::tuple<stored_value, std::function<void(const stored_value&)>, const char*> refused[] = {
        {number(value_type::dword, 1, 4), &stored_value::as_string, "String expected"},
        {number(value_type::binary, 1, 4), &stored_value::as_string, "String expected"},
        {number(7, 65, 2), &stored_value::as_string, "Bad format"},
        {number(value_type::text, 65, 3), &stored_value::as_string, "Bad format"},
        {text(u"1"), &stored_value::as_boolean, "Boolean expected"},
        {number(value_type::dword, 1, 3), &stored_value::as_boolean, "Bad format"},
        {number(value_type::qword, 1, 4), &stored_value::as_unsigned, "Bad format"},
        {number(5, 1, 4), &stored_value::as_unsigned, "Bad format"},
        {text(u"1"), &stored_value::as_unsigned, "Number expected"},
        {text(u"1,5"), &stored_value::as_double, "Bad format"},
        {number(value_type::dword, 1, 4), &stored_value::as_binary, "Array expected"},
        {number(value_type::none, 0, 0), &stored_value::as_binary, "Bad format"},
        {number(value_type::dword, 1, 4), &stored_value::as_date, "Date expected"},
        {text(u"2025-06-31T00:00:00"), &stored_value::as_date, "Bad format"},
        {text(u"CLSID"), &stored_value::as_guid, "Bad format"},
    };
    for (const auto& [value, read, expected_error] : refused)
        EXPECT_THAT([&] { read(value); }, testing::ThrowsMessage<load_exception>(expected_error)) << value.type;
}

TEST(stored_value_test, texts_may_lack_their_terminating_null)
{
    EXPECT_EQ(text(u"de").as_string(), u"de");
    EXPECT_EQ(text(std::u16string_view(u"de\0", 3)).as_string(), u"de");
    EXPECT_EQ(made(value_type::text, nullptr, 0).as_string(), u"");
}

TEST(stored_value_test, a_refused_value_leaves_an_optional_as_it_was)
{
    for (const std::optional<bool> before : {std::optional<bool>(), std::optional(true)}) {
        std::optional<bool> value = before;
        EXPECT_THROW(read_value(girder::registry_ex::single_value_reader(text(u"1"), 0), value), load_exception);
        EXPECT_EQ(value, before);
    }
}

TEST(stored_value_test, numbers_of_both_sizes)
{
    EXPECT_EQ(number(value_type::dword, 0xFFFFFFFF, 4).as_signed(), -1);
    EXPECT_EQ(number(value_type::dword, 0xFFFFFFFF, 4).as_unsigned(), 0xFFFFFFFFU);
    EXPECT_TRUE(number(value_type::qword, std::uint64_t{1} << 40, 8).as_boolean());
    EXPECT_FALSE(number(value_type::qword, 0, 8).as_boolean());
}

TEST(date_test, is_utc_where_no_zone_is_given)
{
    const std::pair<std::u16string_view, std::int64_t> seconds_since_1970[] = {
        {u"2025-06-25T14:03:09+0100", 1'750'856'589}, {u"2025-06-25T14:03:09-0330", 1'750'872'789},
        {u"2025-06-25T14:03:09", 1'750'860'189},      {u"1601-01-01T00:00:00", -11'644'473'600},
        {u"2024-02-29T00:00:00", 1'709'164'800},
    };
    for (const auto& [text, seconds] : seconds_since_1970)
        EXPECT_EQ(parse_date(text).value().ticks, girder::unix_epoch_ticks + seconds * girder::ticks_per_second)
            << testing::PrintToString(text);
}

TEST(date_test, anything_else_is_refused)
{
    for (const std::u16string_view text :
         {u"", u"2025-06-25", u"2025-06-25 14:03:09", u"2025-06-25T14:03:09Z", u"2025-06-25T14:03:09+01:00",
          u"2025-06-25T14:03:09+010", u"2025-06-25T14:03:09+01000", u"2025-02-29T00:00:00", u"2025-06-25T24:00:00",
          u"1600-12-31T00:00:00", u"2025-06-25T1a:03:09", u"2025-06-25T14:03:09+9900"})
        EXPECT_FALSE(parse_date(text)) << testing::PrintToString(text);
}

} // namespace
