#include "app/running_marker.h"

#include "base/win32_error.h"

#include <array>
#include <cstring>

namespace tidelink {
namespace {

using girder::throw_if_failed;
using girder::throw_last_error;
using girder::unique_local_memory;

/// S-1-1-0, everyone.
class everyone_sid {
public:
    everyone_sid()
    {
        SID_IDENTIFIER_AUTHORITY world = SECURITY_WORLD_SID_AUTHORITY;
        if (!::InitializeSid(get(), &world, 1))
            throw_last_error("InitializeSid");
        *::GetSidSubAuthority(get(), 0) = SECURITY_WORLD_RID;
    }

    PSID get() noexcept { return storage_.data(); }
    DWORD size() noexcept { return ::GetLengthSid(get()); }

private:
    alignas(SID) std::array<std::byte, SECURITY_MAX_SID_SIZE> storage_{};
};

unique_local_memory allocate(std::size_t size)
{
    unique_local_memory block{::LocalAlloc(LMEM_FIXED | LMEM_ZEROINIT, size)};
    if (!block)
        throw_if_failed(E_OUTOFMEMORY, "LocalAlloc");
    return block;
}

/// An access list of exactly the needed size: its whole buffer goes into the self-relative form.
unique_local_memory allow_everyone(DWORD mask)
{
    everyone_sid everyone;
    const auto size = static_cast<DWORD>(sizeof(ACL) + offsetof(ACCESS_ALLOWED_ACE, SidStart)) + everyone.size();
    unique_local_memory list = allocate(size);
    auto* acl = static_cast<ACL*>(list.get());
    if (!::InitializeAcl(acl, size, ACL_REVISION))
        throw_last_error("InitializeAcl");
    if (!::AddAccessAllowedAce(acl, ACL_REVISION, mask, everyone.get()))
        throw_last_error("AddAccessAllowedAce");
    return list;
}

bool is_self_relative(SECURITY_DESCRIPTOR& descriptor)
{
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    if (!::GetSecurityDescriptorControl(&descriptor, &control, &revision))
        throw_last_error("GetSecurityDescriptorControl");
    return (control & SE_SELF_RELATIVE) != 0;
}

unique_local_memory self_relative(SECURITY_DESCRIPTOR& descriptor)
{
    DWORD size = ::GetSecurityDescriptorLength(&descriptor);
    unique_local_memory block = allocate(size);
    if (is_self_relative(descriptor))
        std::memcpy(block.get(), &descriptor, size);
    else if (!::MakeSelfRelativeSD(&descriptor, block.get(), &size))
        throw_last_error("MakeSelfRelativeSD");
    return block;
}

unique_local_memory open_descriptor()
{
    SECURITY_DESCRIPTOR descriptor{};
    if (!::InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION))
        throw_last_error("InitializeSecurityDescriptor");
    const unique_local_memory list = allow_everyone(MUTEX_ALL_ACCESS);
    if (!::SetSecurityDescriptorDacl(&descriptor, TRUE, static_cast<ACL*>(list.get()), FALSE))
        throw_last_error("SetSecurityDescriptorDacl");
    return self_relative(descriptor);
}

} // namespace

running_marker::running_marker() : descriptor_(open_descriptor())
{
    SECURITY_ATTRIBUTES attributes{
        .nLength = sizeof attributes, .lpSecurityDescriptor = descriptor_.get(), .bInheritHandle = FALSE};
    mutex_.reset(::CreateMutexW(&attributes, FALSE, name));
}

} // namespace tidelink
