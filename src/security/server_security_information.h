#pragma once

#include "security/security_descriptor.h"

#include <windows.h>

#include <aclui.h>

#include <array>
#include <exception>
#include <string>

namespace tidelink {

/// What the system's access editor asks about the server: the list it edits, in the editor's form, and the names of the
/// rights. Lives on its creator's stack while the editor is open, so references are not counted.
class ServerSecurityInformation final : public ISecurityInformation {
public:
    /// \param edited       in the editor's form
    /// \param object_name  what the editor's title names
    /// \param right_name   the second name of the one right; the first is "Full Control"
    ServerSecurityInformation(security_descriptor edited, std::u16string object_name, std::u16string right_name);
    ServerSecurityInformation(const ServerSecurityInformation&) = delete;
    ServerSecurityInformation& operator=(const ServerSecurityInformation&) = delete;
    ~ServerSecurityInformation() = default;

    /// The descriptor that the editor has set last, at first the given one.
    /// \throws girder::system_error when one that it has set could not be copied
    const security_descriptor& edited() const;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override;
    ULONG STDMETHODCALLTYPE Release() noexcept override;

    /// Permissions alone, without pages for owner, audit and inheritance, and with a button that resets.
    HRESULT STDMETHODCALLTYPE GetObjectInformation(SI_OBJECT_INFO* info) noexcept override;
    /// A copy of the present descriptor for the caller to free with LocalFree; E_FAIL when the access list is not among
    /// what is requested. The default that a reset asks for is the present descriptor, too.
    HRESULT STDMETHODCALLTYPE GetSecurity(SECURITY_INFORMATION requested, PSECURITY_DESCRIPTOR* descriptor,
                                          BOOL default_wanted) noexcept override;
    /// S_OK in any case: a copy that fails is told by edited().
    HRESULT STDMETHODCALLTYPE SetSecurity(SECURITY_INFORMATION given,
                                          PSECURITY_DESCRIPTOR descriptor) noexcept override;
    /// The same right under both names: checking one checks the other.
    HRESULT STDMETHODCALLTYPE GetAccessRights(const GUID* object_type, DWORD flags, SI_ACCESS** rights, ULONG* count,
                                              ULONG* default_right) noexcept override;
    HRESULT STDMETHODCALLTYPE MapGeneric(const GUID* object_type, UCHAR* entry_flags,
                                         ACCESS_MASK* mask) noexcept override;
    HRESULT STDMETHODCALLTYPE GetInheritTypes(SI_INHERIT_TYPE** types, ULONG* count) noexcept override;
    HRESULT STDMETHODCALLTYPE PropertySheetPageCallback(HWND page, UINT message, SI_PAGE_TYPE type) noexcept override;

private:
    security_descriptor edited_;
    std::exception_ptr failed_set_;
    std::u16string object_name_;
    std::u16string right_name_;
    std::array<SI_ACCESS, 2> rights_;
};

} // namespace tidelink
