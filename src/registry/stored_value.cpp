#include "registry/stored_value.h"

#include "base/utf.h"
#include "serialisation/date_text.h"
#include "serialisation/guid_text.h"
#include "serialisation/load_exception.h"
#include "serialisation/real_text.h"

#include <cstring>
#include <optional>

namespace girder::registry_ex {
namespace {

using nsm::details::load_exception;

[[noreturn]] void refuse_format()
{
    throw load_exception(nsm::details::bad_format);
}

bool is_number_type(std::uint32_t type)
{
    return type == value_type::dword || type == value_type::qword;
}

/// Whether values of the type are written by this layer at all.
bool is_known_type(std::uint32_t type)
{
    return type == value_type::text || type == value_type::binary || is_number_type(type);
}

template <typename Number>
Number number_in(const std::vector<std::byte>& data)
{
    Number number = 0;
    std::memcpy(&number, data.data(), sizeof number);
    return number;
}

template <typename Real>
Real real_in(const std::u16string& text)
{
    if (const std::optional<Real> parsed = nsm::parse_real<Real>(to_utf8(text)))
        return *parsed;
    refuse_format();
}

} // namespace

void stored_value::refuse_kind(const char* expected) const
{
    throw load_exception(is_known_type(type) ? expected : nsm::details::bad_format);
}

bool stored_value::is_null() const noexcept
{
    return type == value_type::none && data.empty();
}

bool stored_value::is_binary() const noexcept
{
    return type == value_type::binary;
}

file_time stored_value::as_date() const
{
    if (type != value_type::text)
        refuse_kind(nsm::details::date_expected);
    if (const auto parsed = nsm::parse_date(as_string()))
        return *parsed;
    refuse_format();
}

std::u16string stored_value::as_string() const
{
    if (type != value_type::text)
        refuse_kind(nsm::details::string_expected);
    if (data.size() % sizeof(char16_t) != 0)
        refuse_format();
    std::u16string text(data.size() / sizeof(char16_t), u'\0');
    if (!text.empty())
        std::memcpy(text.data(), data.data(), data.size());
    // Other programs may have stored the text without its terminating null.
    if (!text.empty() && text.back() == u'\0')
        text.pop_back();
    return text;
}

nsm::guid stored_value::as_guid() const
{
    if (const auto parsed = nsm::parse_guid(as_string()))
        return *parsed;
    refuse_format();
}

std::uint64_t stored_value::as_unsigned() const
{
    if (!is_number_type(type))
        refuse_kind(nsm::details::number_expected);
    if (type == value_type::dword && data.size() == sizeof(std::uint32_t))
        return number_in<std::uint32_t>(data);
    if (type == value_type::qword && data.size() == sizeof(std::uint64_t))
        return number_in<std::uint64_t>(data);
    refuse_format();
}

std::int64_t stored_value::as_signed() const
{
    const std::uint64_t number = as_unsigned();
    return type == value_type::dword ? static_cast<std::int32_t>(number) : static_cast<std::int64_t>(number);
}

double stored_value::as_double() const
{
    if (is_number_type(type))
        return static_cast<double>(as_signed());
    if (type != value_type::text)
        refuse_kind(nsm::details::number_expected);
    return real_in<double>(as_string());
}

float stored_value::as_float() const
{
    if (is_number_type(type))
        return static_cast<float>(as_signed());
    if (type != value_type::text)
        refuse_kind(nsm::details::number_expected);
    return real_in<float>(as_string());
}

bool stored_value::as_boolean() const
{
    if (!is_number_type(type))
        refuse_kind(nsm::details::boolean_expected);
    return as_unsigned() != 0;
}

std::vector<std::byte> stored_value::as_binary() const
{
    if (type != value_type::binary)
        refuse_kind(nsm::details::array_expected);
    return data;
}

} // namespace girder::registry_ex
