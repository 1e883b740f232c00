#pragma once

#include "base/handles.h"

#include <windows.h>

namespace girder::registry_ex {

/// Creates or opens a non-volatile key: RegCreateKeyTransactedW on the transaction, or RegCreateKeyExW where it is
/// null.
/// \return the status code; the key is set when it is ERROR_SUCCESS
LSTATUS create_key(HKEY parent, const char16_t* name, REGSAM access, HANDLE transaction, unique_registry_key& key);

} // namespace girder::registry_ex
