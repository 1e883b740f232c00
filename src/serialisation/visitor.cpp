#include "serialisation/visitor.h"

#include "serialisation/field_matcher.h"

#include <optional>

namespace girder::nsm {

void value_reader::visit_named(std::span<const std::string_view> names, const named_visitor& visit) const
{
    const bool name_order = (capabilities() & members_in_name_order) != 0;
    field_matcher matcher(names, name_order ? field_matcher::expected_order::name
                                            : field_matcher::expected_order::declaration);
    visit_members([&](value_name name, const value_reader& value) {
        const std::optional<std::size_t> matched = matcher.match(name.text);
        if (matched && name.suffix() == 0)
            visit(*matched, value);
    });
}

} // namespace girder::nsm
