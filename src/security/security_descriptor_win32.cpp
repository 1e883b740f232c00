#include "base/wide.h"
#include "base/win32_error.h"
#include "security/access_translation.h"
#include "security/security_descriptor.h"

#include <sddl.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

namespace tidelink {
namespace {

using girder::throw_if_failed;
using girder::throw_last_error;
using girder::throw_win32;
using girder::unique_local_memory;

/// \param failure  what is thrown when there is no memory
unique_local_memory allocate(std::size_t size, HRESULT failure)
{
    unique_local_memory block{::LocalAlloc(LMEM_FIXED | LMEM_ZEROINIT, size)};
    if (!block)
        throw_if_failed(failure, "LocalAlloc");
    return block;
}

unique_local_memory allocate_part(DWORD size)
{
    return size > 0 ? allocate(size, E_FAIL) : unique_local_memory();
}

bool is_self_relative(PSECURITY_DESCRIPTOR descriptor)
{
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    if (!::GetSecurityDescriptorControl(descriptor, &control, &revision))
        throw_last_error("GetSecurityDescriptorControl");
    return (control & SE_SELF_RELATIVE) != 0;
}

PSID sid_of(const access_entry& entry)
{
    return const_cast<std::byte*>(entry.sid.data());
}

/// Exactly as large as its entries: the whole memory of a list goes into a descriptor's self-relative form. A list that
/// is too large for its own header is made as large as one can be, and the entry that does not fit is refused.
unique_local_memory list_of(const access_list& entries)
{
    constexpr std::size_t largest = 0xFFFC;
    std::size_t needed = sizeof(ACL);
    for (const access_entry& entry : entries)
        needed += offsetof(ACCESS_ALLOWED_ACE, SidStart) + entry.sid.size();
    const auto size = static_cast<DWORD>(std::min(needed, largest));
    unique_local_memory memory = allocate(size, E_OUTOFMEMORY);
    auto* const list = static_cast<ACL*>(memory.get());
    if (!::InitializeAcl(list, size, ACL_REVISION))
        throw_last_error("InitializeAcl");
    for (const access_entry& entry : entries) {
        const auto add = entry.kind == access_kind::allowed ? ::AddAccessAllowedAceEx : ::AddAccessDeniedAceEx;
        if (!add(list, ACL_REVISION, entry.flags, entry.mask, sid_of(entry)))
            throw_if_failed(E_INVALIDARG, "adding to an access list");
    }
    return memory;
}

std::vector<std::byte> read_sid(const ACE_HEADER& header)
{
    constexpr std::size_t start = offsetof(ACCESS_ALLOWED_ACE, SidStart);
    if (header.AceSize < start + offsetof(SID, SubAuthority))
        throw_win32(ERROR_INVALID_ACL, "GetAce");
    const auto* const sid = reinterpret_cast<const std::byte*>(&header) + start;
    const DWORD size = ::GetLengthSid(const_cast<std::byte*>(sid));
    if (size > header.AceSize - start)
        throw_win32(ERROR_INVALID_ACL, "GetAce");
    return {sid, sid + size};
}

access_entry read_entry(const ACE_HEADER& header)
{
    access_entry entry{.kind = access_kind{header.AceType}, .flags = header.AceFlags, .mask = 0, .sid = {}};
    // Every kind has its mask behind the header; the identity follows at once only in these two.
    if (header.AceSize >= offsetof(ACCESS_ALLOWED_ACE, SidStart))
        entry.mask = reinterpret_cast<const ACCESS_ALLOWED_ACE&>(header).Mask;
    if (entry.kind == access_kind::allowed || entry.kind == access_kind::denied)
        entry.sid = read_sid(header);
    return entry;
}

DWORD entry_count(ACL* list)
{
    ACL_SIZE_INFORMATION size{};
    if (!::GetAclInformation(list, &size, sizeof size, AclSizeInformation))
        throw_last_error("GetAclInformation");
    return size.AceCount;
}

access_list read_list(ACL* list)
{
    const DWORD count = entry_count(list);
    access_list entries;
    entries.reserve(count);
    for (DWORD index = 0; index < count; ++index) {
        void* ace = nullptr;
        if (!::GetAce(list, index, &ace))
            throw_last_error("GetAce");
        entries.push_back(read_entry(*static_cast<const ACE_HEADER*>(ace)));
    }
    return entries;
}

security_descriptor translated(const security_descriptor& source, access_list (*translate)(const access_list&))
{
    try {
        return security_descriptor::with_entries(translate(entries_of(source).value_or(access_list())));
    } catch (const std::bad_alloc&) {
        throw girder::system_error(static_cast<std::uint32_t>(E_OUTOFMEMORY), "building an access list");
    }
}

} // namespace

security_descriptor security_descriptor::with_list(unique_local_memory list)
{
    security_descriptor made;
    made.access_list_ = std::move(list);
    made.absolute_ = allocate(sizeof(SECURITY_DESCRIPTOR), E_FAIL);
    if (!::InitializeSecurityDescriptor(made.get(), SECURITY_DESCRIPTOR_REVISION))
        throw_last_error("InitializeSecurityDescriptor");
    if (!::SetSecurityDescriptorDacl(made.get(), TRUE, static_cast<ACL*>(made.access_list_.get()), FALSE))
        throw_last_error("SetSecurityDescriptorDacl");
    return made;
}

security_descriptor security_descriptor::with_entries(const access_list& entries)
{
    return with_list(list_of(entries));
}

security_descriptor security_descriptor::copy_of(PSECURITY_DESCRIPTOR original)
{
    const unique_local_memory source = self_relative_copy(original);
    DWORD whole = 0;
    DWORD access = 0;
    DWORD audit = 0;
    DWORD owner = 0;
    DWORD group = 0;
    if (!::MakeAbsoluteSD(source.get(), nullptr, &whole, nullptr, &access, nullptr, &audit, nullptr, &owner, nullptr,
                          &group)) {
        const DWORD code = ::GetLastError();
        if (code != ERROR_INSUFFICIENT_BUFFER)
            throw_win32(code, "MakeAbsoluteSD");
    }
    security_descriptor copy;
    copy.owner_ = allocate_part(owner);
    copy.group_ = allocate_part(group);
    copy.access_list_ = allocate_part(access);
    copy.audit_list_ = allocate_part(audit);
    copy.absolute_ = allocate_part(whole);
    if (!::MakeAbsoluteSD(source.get(), copy.get(), &whole, static_cast<ACL*>(copy.access_list_.get()), &access,
                          static_cast<ACL*>(copy.audit_list_.get()), &audit, copy.owner_.get(), &owner,
                          copy.group_.get(), &group))
        throw_last_error("MakeAbsoluteSD");
    return copy;
}

unique_local_memory self_relative_copy(PSECURITY_DESCRIPTOR descriptor)
{
    DWORD size = ::GetSecurityDescriptorLength(descriptor);
    unique_local_memory copy = allocate(size, E_OUTOFMEMORY);
    // MakeSelfRelativeSD refuses what is self-relative already.
    if (is_self_relative(descriptor))
        std::memcpy(copy.get(), descriptor, size);
    else if (!::MakeSelfRelativeSD(descriptor, copy.get(), &size))
        throw_last_error("MakeSelfRelativeSD");
    return copy;
}

security_descriptor ParseDescriptor(const std::u16string& sddl)
{
    unique_local_memory parsed;
    if (!::ConvertStringSecurityDescriptorToSecurityDescriptorW(girder::as_wide(sddl), SDDL_REVISION_1, parsed.put(),
                                                                nullptr))
        throw_last_error("ConvertStringSecurityDescriptorToSecurityDescriptorW");
    return security_descriptor::copy_of(parsed.get());
}

std::optional<std::u16string> FormatDescriptor(const security_descriptor& descriptor)
{
    if (!descriptor)
        return std::nullopt;
    constexpr SECURITY_INFORMATION everything =
        OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION | SACL_SECURITY_INFORMATION;
    wchar_t* text = nullptr;
    if (!::ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor.get(), SDDL_REVISION_1, everything, &text,
                                                                nullptr))
        throw_last_error("ConvertSecurityDescriptorToStringSecurityDescriptorW");
    const unique_local_memory owner(text);
    return std::u16string(girder::as_utf16(text));
}

std::optional<access_list> entries_of(const security_descriptor& descriptor)
{
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    ACL* list = nullptr;
    if (!::GetSecurityDescriptorDacl(descriptor.get(), &present, &list, &defaulted))
        throw_last_error("GetSecurityDescriptorDacl");
    if (!present || !list)
        return std::nullopt;
    return read_list(list);
}

std::size_t audit_entry_count(const security_descriptor& descriptor)
{
    BOOL present = FALSE;
    BOOL defaulted = FALSE;
    ACL* list = nullptr;
    if (!::GetSecurityDescriptorSacl(descriptor.get(), &present, &list, &defaulted))
        throw_last_error("GetSecurityDescriptorSacl");
    return present && list ? entry_count(list) : 0;
}

security_descriptor ToEditorForm(const security_descriptor& stored)
{
    return translated(stored, ToEditorForm);
}

security_descriptor FromEditorForm(const security_descriptor& edited)
{
    return translated(edited, FromEditorForm);
}

} // namespace tidelink
