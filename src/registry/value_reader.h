#pragma once

#include "base/handles.h"
#include "serialisation/kindless_reader.h"

#include <windows.h>

namespace girder::registry_ex {

/// A structure or an array that a registry key holds: what RegistryValueWriter wrote. Values are read when they are
/// visited; a value that goes missing meanwhile is "Bad format". A key is no value of any other kind.
class RegistryValueReader : public nsm::kindless_reader {
public:
    /// \param key  open for reading; closed with the reader
    RegistryValueReader(unique_registry_key key, std::uint32_t capabilities) noexcept;

    std::uint32_t capabilities() const noexcept override { return capabilities_; }
    bool is_null() const override { return false; }

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
