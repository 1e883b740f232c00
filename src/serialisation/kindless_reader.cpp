#include "serialisation/absent_value.h"

#include "serialisation/load_exception.h"

namespace girder::nsm {

using details::load_exception;

file_time absent_value::as_date() const
{
    throw load_exception(details::date_expected);
}

std::u16string absent_value::as_string() const
{
    throw load_exception(details::string_expected);
}

guid absent_value::as_guid() const
{
    throw load_exception(details::string_expected);
}

std::uint64_t absent_value::as_unsigned() const
{
    throw load_exception(details::number_expected);
}

std::int64_t absent_value::as_signed() const
{
    throw load_exception(details::number_expected);
}

double absent_value::as_double() const
{
    throw load_exception(details::number_expected);
}

float absent_value::as_float() const
{
    throw load_exception(details::number_expected);
}

bool absent_value::as_boolean() const
{
    throw load_exception(details::boolean_expected);
}

std::vector<std::byte> absent_value::as_binary() const
{
    throw load_exception(details::string_expected);
}

void absent_value::visit_members(const member_visitor& /*visit*/) const
{
    throw load_exception(details::object_expected);
}

void absent_value::visit_elements(const element_visitor& /*visit*/) const
{
    throw load_exception(details::array_expected);
}

} // namespace girder::nsm
