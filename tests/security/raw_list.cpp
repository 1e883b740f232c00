#include "security/raw_list.h"

#include <cstring>
#include <span>
#include <vector>

namespace support {
namespace {

class bytes {
public:
    template <typename Value>
    void add(Value value)
    {
        const auto* const first = reinterpret_cast<const std::byte*>(&value);
        all_.insert(all_.end(), first, first + sizeof value);
    }
    void add_all(std::span<const std::byte> more) { all_.insert(all_.end(), more.begin(), more.end()); }
    WORD size() const { return static_cast<WORD>(all_.size()); }
    std::span<const std::byte> all() const { return all_; }

private:
    std::vector<std::byte> all_;
};

bytes raw_entry(const tidelink::access_entry& entry)
{
    bytes body;
    body.add(DWORD{entry.mask});
    if (entry.sid.empty()) {
        constexpr DWORD no_object_types = 0;
        body.add(no_object_types);
        body.add_all(tidelink::everyone_sid);
    } else {
        body.add_all(entry.sid);
    }
    bytes raw;
    raw.add(static_cast<BYTE>(entry.kind));
    raw.add(BYTE{entry.flags});
    raw.add(static_cast<WORD>(sizeof(ACE_HEADER) + body.size()));
    raw.add_all(body.all());
    return raw;
}

} // namespace

girder::unique_local_memory raw_list(const tidelink::access_list& entries)
{
    bytes body;
    for (const tidelink::access_entry& entry : entries)
        body.add_all(raw_entry(entry).all());
    const ACL header{.AclRevision = ACL_REVISION_DS,
                     .Sbz1 = 0,
                     .AclSize = static_cast<WORD>(sizeof(ACL) + body.size()),
                     .AceCount = static_cast<WORD>(entries.size()),
                     .Sbz2 = 0};
    girder::unique_local_memory list{::LocalAlloc(LMEM_FIXED, header.AclSize)};
    std::memcpy(list.get(), &header, sizeof header);
    std::memcpy(static_cast<ACL*>(list.get()) + 1, body.all().data(), body.size());
    return list;
}

} // namespace support
