#pragma once

#include "base/handles.h"
#include "security/access_entry.h"

#include <windows.h>

#include <cstddef>
#include <optional>
#include <string>

// The server's access list in the system's own shapes. Failures are girder::system_error: E_OUTOFMEMORY when there is
// no memory for an access list, E_INVALIDARG when an entry does not fit into one, E_FAIL when there is no memory for a
// descriptor, else the code of the failing call.

namespace tidelink {

/// A working descriptor in absolute form with the parts that it refers to, or none.
class security_descriptor {
public:
    /// None.
    security_descriptor() noexcept = default;

    /// A descriptor with this access list and nothing else. The list fills its memory exactly.
    static security_descriptor with_list(girder::unique_local_memory list);
    /// The same with these allowing and denying entries.
    static security_descriptor with_entries(const access_list& entries);
    /// A copy of a descriptor in either form, with every part that it has.
    static security_descriptor copy_of(PSECURITY_DESCRIPTOR original);

    explicit operator bool() const noexcept { return static_cast<bool>(absolute_); }
    /// Null when there is none.
    PSECURITY_DESCRIPTOR get() const noexcept { return absolute_.get(); }

private:
    // The descriptor refers to its parts, which stay where they are when it is moved.
    girder::unique_local_memory owner_;
    girder::unique_local_memory group_;
    girder::unique_local_memory access_list_;
    girder::unique_local_memory audit_list_;
    girder::unique_local_memory absolute_;
};

/// A copy in one piece of memory from LocalAlloc. Throws E_OUTOFMEMORY when there is no memory for it.
girder::unique_local_memory self_relative_copy(PSECURITY_DESCRIPTOR descriptor);

/// The descriptor that an SDDL string describes.
/// \throws girder::system_error with the code of ConvertStringSecurityDescriptorToSecurityDescriptorW
security_descriptor ParseDescriptor(const std::u16string& sddl);

/// The SDDL string of owner, group, access list and audit list, whichever are there; empty when there is no descriptor.
std::optional<std::u16string> FormatDescriptor(const security_descriptor& descriptor);

/// The entries of the access list; empty when the descriptor has no list, which lets everyone in.
std::optional<access_list> entries_of(const security_descriptor& descriptor);

/// How many audit entries the descriptor has.
std::size_t audit_entry_count(const security_descriptor& descriptor);

/// What the editor is given for a stored descriptor: one with the editor's form of its list and nothing else. No list
/// gives an empty one.
security_descriptor ToEditorForm(const security_descriptor& stored);

/// The descriptor to store for an edited one: its list's stored form and nothing else. No list counts as an empty one.
security_descriptor FromEditorForm(const security_descriptor& edited);

} // namespace tidelink
