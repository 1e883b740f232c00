#pragma once

#include "registry/stored_value.h"
#include "serialisation/visitor.h"

#include <utility>

namespace girder::registry_ex {

/// A single value as a source. It is no structure and no array: those are keys.
class single_value_reader : public nsm::value_reader {
public:
    single_value_reader(stored_value value, std::uint32_t capabilities) noexcept
        : value_(std::move(value)), capabilities_(capabilities)
    {}

    std::uint32_t capabilities() const noexcept override { return capabilities_; }
    bool is_null() const override { return value_.is_null(); }
    bool is_binary() const override { return value_.is_binary(); }
    file_time as_date() const override { return value_.as_date(); }
    std::u16string as_string() const override { return value_.as_string(); }
    nsm::guid as_guid() const override { return value_.as_guid(); }
    std::uint64_t as_unsigned() const override { return value_.as_unsigned(); }
    std::int64_t as_signed() const override { return value_.as_signed(); }
    double as_double() const override { return value_.as_double(); }
    float as_float() const override { return value_.as_float(); }
    bool as_boolean() const override { return value_.as_boolean(); }
    std::vector<std::byte> as_binary() const override { return value_.as_binary(); }
    void visit_members(const member_visitor& visit) const override;
    std::uint32_t structure_version() const override;
    void visit_elements(const element_visitor& visit) const override;

private:
    stored_value value_;
    std::uint32_t capabilities_;
};

} // namespace girder::registry_ex
