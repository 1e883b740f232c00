#pragma once

#include "base/handles.h"
#include "security/access_entry.h"

#include <windows.h>

namespace support {

/// The entries as the system keeps a list in memory, written byte by byte: any kind, any flags. Entries without a SID
/// get that of everyone behind the two fields that an object entry has before it.
girder::unique_local_memory raw_list(const tidelink::access_list& entries);

} // namespace support
