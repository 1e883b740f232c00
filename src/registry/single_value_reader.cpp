#include "registry/single_value_reader.h"

#include "serialisation/load_exception.h"

namespace girder::registry_ex {

void single_value_reader::visit_members(const member_visitor& /*visit*/) const
{
    value_.refuse_kind(nsm::details::object_expected);
}

std::uint32_t single_value_reader::structure_version() const
{
    value_.refuse_kind(nsm::details::object_expected);
}

void single_value_reader::visit_elements(const element_visitor& /*visit*/) const
{
    value_.refuse_kind(nsm::details::array_expected);
}

} // namespace girder::registry_ex
