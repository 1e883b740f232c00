#include "security/access_summary.h"

#include <algorithm>
#include <span>
#include <vector>

namespace tidelink {
namespace {

bool is_about_connecting(const access_entry& entry)
{
    return (entry.kind == access_kind::allowed || entry.kind == access_kind::denied) &&
           (entry.flags & inherit_only) == 0 && (entry.mask & ~stored_right::server_specific) != 0;
}

bool is_about(const access_entry& entry, const std::array<std::byte, 12>& sid)
{
    return std::ranges::equal(entry.sid, sid);
}

bool allows_another_than_the_service(const access_entry& entry)
{
    return is_about_connecting(entry) && entry.kind == access_kind::allowed && !is_about(entry, service_sid);
}

/// The entries before the first one for everyone.
class listed_access {
public:
    void add(const access_entry& entry)
    {
        const auto same = [&](const access_entry* earlier) { return earlier->sid == entry.sid; };
        if (std::ranges::any_of(decided_, same))
            return;
        decided_.push_back(&entry);
        if (is_about(entry, service_sid))
            service_ = entry.kind == access_kind::allowed;
        else
            ++(entry.kind == access_kind::allowed ? allowed_ : denied_);
    }

    access_summary with_everyone_allowed() const { return {.reach = access_reach::everyone, .denied = denied_}; }

    /// \param rest  the entries behind the denial
    access_summary with_everyone_denied(std::span<const access_entry> rest) const
    {
        if (allowed_ > 0)
            return {.reach = access_reach::listed, .allowed = allowed_, .denied = denied_};
        if (!service_)
            return {.reach = access_reach::nobody};
        return {.reach = std::ranges::any_of(rest, allows_another_than_the_service) ? access_reach::denied_first
                                                                                    : access_reach::nobody_but_service};
    }

private:
    std::vector<const access_entry*> decided_;
    std::size_t allowed_ = 0;
    std::size_t denied_ = 0;
    bool service_ = false;
};

} // namespace

access_summary summarise(const std::optional<access_list>& stored)
{
    if (!stored)
        return {.reach = access_reach::everyone};
    listed_access listed;
    for (auto entry = stored->begin(); entry != stored->end(); ++entry) {
        if (!is_about_connecting(*entry))
            continue;
        if (!is_about(*entry, everyone_sid))
            listed.add(*entry);
        else if (entry->kind == access_kind::allowed)
            return listed.with_everyone_allowed();
        else
            return listed.with_everyone_denied({entry + 1, stored->end()});
    }
    return listed.with_everyone_denied({});
}

} // namespace tidelink
