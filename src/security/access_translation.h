#pragma once

#include "security/access_entry.h"

#include <cstddef>

// The two forms of the server's access list: the stored form, with the rights that the server checks and the service's
// own entry, and the editor's form, in which each entry carries the one right that people know. The order of entries is
// kept in both directions.

namespace tidelink {

/// What the editor shows of a stored list: the service's own entry is hidden, as is any other with its mark; the other
/// allowing and denying entries get the one right, whatever theirs were, and keep their flags. Other kinds are dropped.
access_list ToEditorForm(const access_list& stored);

/// The list to store for an edited one. The service's own entry always comes first; entries with the one right follow,
/// the others are dropped. Where none follows, everyone is denied: an empty list lets nobody in but the service.
access_list FromEditorForm(const access_list& edited);

/// How many entries of a stored list are gone after both translations without being made anew: those of other kinds,
/// and those that have the service's mark without being its own entry.
std::size_t lost_entries(const access_list& stored);

} // namespace tidelink
