#pragma once

#include "base/handles.h"
#include "serialisation/visitor.h"

#include <windows.h>

namespace girder::registry_ex {

/// A structure or an array that a registry key holds: what RegistryValueWriter wrote. Values are read when they are
/// visited; a value that goes missing meanwhile is "Bad format".
class RegistryValueReader : public nsm::value_reader {
public:
    /// \param key  open for reading; closed with the reader
    RegistryValueReader(unique_registry_key key, std::uint32_t capabilities) noexcept;

    std::uint32_t capabilities() const noexcept override { return capabilities_; }

    bool is_null() const override { return false; }
    bool is_binary() const override { return false; }

    // A key is none of these: each throws its "... expected".
    file_time as_date() const override;
    std::u16string as_string() const override;
    nsm::guid as_guid() const override;
    std::uint64_t as_unsigned() const override;
    std::int64_t as_signed() const override;
    double as_double() const override;
    float as_float() const override;
    bool as_boolean() const override;
    std::vector<std::byte> as_binary() const override;

    /// The key's values, then its subkeys; "@count" and "@version" are no members, and a value hides the subkey of its
    /// name.
    void visit_members(const member_visitor& visit) const override;
    std::uint32_t structure_version() const override;
    /// As many as "@count" says, by index.
    /// \throws load_exception "Array expected" without "@count", "Bad format" when an element is missing or there twice
    void visit_elements(const element_visitor& visit) const override;

private:
    unique_registry_key key_;
    std::uint32_t capabilities_;
};

} // namespace girder::registry_ex
