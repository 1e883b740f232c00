#include "security/access_summary.h"

#include <algorithm>
#include <span>

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

bool is_decided_by(std::span<const access_entry> earlier, const access_entry& entry)
{
    return std::ranges::any_of(
        earlier, [&](const access_entry& each) { return is_about_connecting(each) && each.sid == entry.sid; });
}

/// \param listed   how many are allowed and denied before everyone is denied
/// \param service  whether the service is allowed there
/// \param rest     the entries behind that denial
access_summary with_everyone_denied(access_summary listed, bool service, std::span<const access_entry> rest)
{
    if (listed.allowed > 0)
        return listed;
    if (!service)
        return {.reach = access_reach::nobody};
    return {.reach = std::ranges::any_of(rest, allows_another_than_the_service) ? access_reach::denied_first
                                                                                : access_reach::nobody_but_service};
}

} // namespace

access_summary summarise(const std::optional<access_list>& stored)
{
    if (!stored)
        return {.reach = access_reach::everyone};
    const std::span<const access_entry> entries(*stored);
    access_summary listed{.reach = access_reach::listed};
    bool service = false;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const access_entry& entry = entries[i];
        if (!is_about_connecting(entry) || is_decided_by(entries.first(i), entry))
            continue;
        const bool allows = entry.kind == access_kind::allowed;
        if (is_about(entry, everyone_sid))
            return allows ? access_summary{.reach = access_reach::everyone, .denied = listed.denied}
                          : with_everyone_denied(listed, service, entries.subspan(i + 1));
        if (is_about(entry, service_sid))
            service = allows;
        else
            ++(allows ? listed.allowed : listed.denied);
    }
    return with_everyone_denied(listed, service, {});
}

} // namespace tidelink
