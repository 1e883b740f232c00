#include "security/access_translation.h"

#include <algorithm>

namespace tidelink {
namespace {

bool is_hidden(const access_entry& entry)
{
    return (entry.mask & stored_right::server_specific) != 0;
}

bool has_editor_form(const access_entry& entry)
{
    return entry.kind == access_kind::allowed || entry.kind == access_kind::denied;
}

bool is_made_anew(const access_entry& entry)
{
    return is_hidden(entry) && entry.kind == access_kind::allowed && std::ranges::equal(entry.sid, service_sid);
}

access_entry entry_for(access_kind kind, std::uint32_t mask, const std::array<std::byte, 12>& sid)
{
    return {.kind = kind, .flags = 0, .mask = mask, .sid = {sid.begin(), sid.end()}};
}

access_entry with_mask(access_entry entry, std::uint32_t mask)
{
    entry.mask = mask;
    return entry;
}

} // namespace

access_list ToEditorForm(const access_list& stored)
{
    access_list edited;
    for (const access_entry& entry : stored)
        if (!is_hidden(entry) && has_editor_form(entry))
            edited.push_back(with_mask(entry, editor_right));
    return edited;
}

access_list FromEditorForm(const access_list& edited)
{
    access_list stored{entry_for(access_kind::allowed, stored_right::service, service_sid)};
    for (const access_entry& entry : edited)
        if ((entry.mask & editor_right) != 0 && has_editor_form(entry))
            stored.push_back(with_mask(entry, stored_right::connect));
    if (stored.size() == 1)
        stored.push_back(entry_for(access_kind::denied, stored_right::closing, everyone_sid));
    return stored;
}

std::size_t lost_entries(const access_list& stored)
{
    return static_cast<std::size_t>(std::ranges::count_if(stored, [](const access_entry& entry) {
        return !has_editor_form(entry) || (is_hidden(entry) && !is_made_anew(entry));
    }));
}

} // namespace tidelink
