#include "app/running_marker.h"

#include "security/security_descriptor.h"

namespace tidelink {
namespace {

girder::unique_local_memory open_descriptor()
{
    const access_entry everyone{.kind = access_kind::allowed,
                                .flags = 0,
                                .mask = MUTEX_ALL_ACCESS,
                                .sid = {everyone_sid.begin(), everyone_sid.end()}};
    return self_relative_copy(security_descriptor::with_entries({everyone}).get());
}

} // namespace

running_marker::running_marker() : descriptor_(open_descriptor())
{
    SECURITY_ATTRIBUTES attributes{
        .nLength = sizeof attributes, .lpSecurityDescriptor = descriptor_.get(), .bInheritHandle = FALSE};
    mutex_.reset(::CreateMutexW(&attributes, FALSE, name));
}

} // namespace tidelink
