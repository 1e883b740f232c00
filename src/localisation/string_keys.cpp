#include "localisation/string_keys.h"

#include "string_ids.h"

namespace tidelink {

std::u16string_view key_of(std::uint32_t id) noexcept
{
    switch (id) {
#define STRING_KEY(name, key)                                                                                          \
    case string_id::name:                                                                                              \
        return key;
#define STRING_WITH_OWN_ID(name, key) STRING_KEY(name, key)
#include "string_keys.inc"
#undef STRING_WITH_OWN_ID
#undef STRING_KEY
    default:
        return {};
    }
}

} // namespace tidelink
