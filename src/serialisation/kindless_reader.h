#pragma once

#include "serialisation/visitor.h"

namespace girder::nsm {

/// Base of readers over what is no value of any kind: everything that is asked for throws its "... expected".
class kindless_reader : public value_reader {
public:
    bool is_binary() const override { return false; }
    file_time as_date() const override;
    std::u16string as_string() const override;
    guid as_guid() const override;
    std::uint64_t as_unsigned() const override;
    std::int64_t as_signed() const override;
    double as_double() const override;
    float as_float() const override;
    bool as_boolean() const override;
    std::vector<std::byte> as_binary() const override;
    void visit_members(const member_visitor& visit) const override;
    void visit_elements(const element_visitor& visit) const override;
};

} // namespace girder::nsm
