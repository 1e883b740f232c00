#include "registry/create_key.h"

#include "base/wide.h"

namespace girder::registry_ex {

LSTATUS create_key(HKEY parent, const char16_t* name, REGSAM access, HANDLE transaction, unique_registry_key& key)
{
    if (transaction)
        return ::RegCreateKeyTransactedW(parent, as_wide(name), 0, nullptr, REG_OPTION_NON_VOLATILE, access, nullptr,
                                         key.put(), nullptr, transaction, nullptr);
    return ::RegCreateKeyExW(parent, as_wide(name), 0, nullptr, REG_OPTION_NON_VOLATILE, access, nullptr, key.put(),
                             nullptr);
}

} // namespace girder::registry_ex
