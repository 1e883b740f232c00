#include "serialisation/kindless_reader.h"

#include "serialisation/load_exception.h"

namespace girder::nsm {

using details::load_exception;

file_time kindless_reader::as_date() const
{
    throw load_exception(details::date_expected);
}

std::u16string kindless_reader::as_string() const
{
    throw load_exception(details::string_expected);
}

guid kindless_reader::as_guid() const
{
    throw load_exception(details::string_expected);
}

std::uint64_t kindless_reader::as_unsigned() const
{
    throw load_exception(details::number_expected);
}

std::int64_t kindless_reader::as_signed() const
{
    throw load_exception(details::number_expected);
}

double kindless_reader::as_double() const
{
    throw load_exception(details::number_expected);
}

float kindless_reader::as_float() const
{
    throw load_exception(details::number_expected);
}

bool kindless_reader::as_boolean() const
{
    throw load_exception(details::boolean_expected);
}

std::vector<std::byte> kindless_reader::as_binary() const
{
    throw load_exception(details::array_expected);
}

void kindless_reader::visit_members(const member_visitor& /*visit*/) const
{
    throw load_exception(details::object_expected);
}

void kindless_reader::visit_elements(const element_visitor& /*visit*/) const
{
    throw load_exception(details::array_expected);
}

} // namespace girder::nsm
