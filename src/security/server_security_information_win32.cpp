#include "base/system_error.h"
#include "base/wide.h"
#include "security/server_security_information.h"

#include <utility>

namespace tidelink {
namespace {

constexpr const wchar_t* full_control = L"Full Control";

} // namespace

ServerSecurityInformation::ServerSecurityInformation(security_descriptor edited, std::u16string object_name,
                                                     std::u16string right_name)
    : edited_(std::move(edited)), object_name_(std::move(object_name)), right_name_(std::move(right_name)),
      rights_{SI_ACCESS{.pguid = nullptr,
                        .mask = editor_right,
                        .pszName = full_control,
                        .dwFlags = SI_ACCESS_SPECIFIC | SI_ACCESS_GENERAL},
              SI_ACCESS{.pguid = nullptr,
                        .mask = editor_right,
                        .pszName = girder::as_wide(right_name_),
                        .dwFlags = SI_ACCESS_GENERAL}}
{}

const security_descriptor& ServerSecurityInformation::edited() const
{
    if (failed_set_)
        std::rethrow_exception(failed_set_);
    return edited_;
}

HRESULT ServerSecurityInformation::QueryInterface(REFIID id, void** object) noexcept
{
    if (!object)
        return E_POINTER;
    const bool known = id == IID_IUnknown || id == IID_ISecurityInformation;
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
}

ULONG ServerSecurityInformation::AddRef() noexcept
{
    return 2;
}

ULONG ServerSecurityInformation::Release() noexcept
{
    return 2;
}

HRESULT ServerSecurityInformation::GetObjectInformation(SI_OBJECT_INFO* info) noexcept
{
    *info = {.dwFlags = SI_RESET | SI_NO_ACL_PROTECT,
             .hInstance = ::GetModuleHandleW(nullptr),
             .pszServerName = nullptr,
             .pszObjectName = girder::as_wide(object_name_.data()),
             .pszPageTitle = nullptr,
             .guidObjectType = {}};
    return S_OK;
}

HRESULT ServerSecurityInformation::GetSecurity(SECURITY_INFORMATION requested, PSECURITY_DESCRIPTOR* descriptor,
                                               BOOL) noexcept
try {
    *descriptor = nullptr;
    if ((requested & DACL_SECURITY_INFORMATION) == 0)
        return E_FAIL;
    *descriptor = self_relative_copy(edited_.get()).release();
    return S_OK;
} catch (const girder::system_error& error) {
    // HRESULTs pass through.
    return HRESULT_FROM_WIN32(error.code());
} catch (...) {
    return E_FAIL;
}

HRESULT ServerSecurityInformation::SetSecurity(SECURITY_INFORMATION given, PSECURITY_DESCRIPTOR descriptor) noexcept
{
    if ((given & DACL_SECURITY_INFORMATION) == 0)
        return S_OK;
    try {
        edited_ = security_descriptor::copy_of(descriptor);
        failed_set_ = nullptr;
    } catch (...) {
        failed_set_ = std::current_exception();
    }
    return S_OK;
}

HRESULT ServerSecurityInformation::GetAccessRights(const GUID*, DWORD, SI_ACCESS** rights, ULONG* count,
                                                   ULONG* default_right) noexcept
{
    *rights = rights_.data();
    *count = static_cast<ULONG>(rights_.size());
    *default_right = 0;
    return S_OK;
}

HRESULT ServerSecurityInformation::MapGeneric(const GUID*, UCHAR*, ACCESS_MASK* mask) noexcept
{
    GENERIC_MAPPING mapping{.GenericRead = 0, .GenericWrite = 0, .GenericExecute = 0, .GenericAll = editor_right};
    ::MapGenericMask(mask, &mapping);
    return S_OK;
}

HRESULT ServerSecurityInformation::GetInheritTypes(SI_INHERIT_TYPE**, ULONG*) noexcept
{
    return E_NOTIMPL;
}

HRESULT ServerSecurityInformation::PropertySheetPageCallback(HWND, UINT, SI_PAGE_TYPE) noexcept
{
    return S_OK;
}

} // namespace tidelink
