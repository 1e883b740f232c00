#include "registry/guid_text.h"

#include "base/wide.h"

#include <windows.h>

#include <objbase.h>

#include <bit>

namespace girder::registry_ex {

static_assert(sizeof(GUID) == sizeof(nsm::guid));

std::u16string to_text(const nsm::guid& value)
{
    constexpr int with_terminator = 39;
    std::u16string text(with_terminator, u'\0');
    ::StringFromGUID2(std::bit_cast<GUID>(value), as_wide(text.data()), with_terminator);
    text.pop_back();
    return text;
}

std::optional<nsm::guid> parse_guid(const std::u16string& text)
{
    CLSID parsed{};
    // The function also takes names of registered classes, which are no GUIDs.
    if (!text.starts_with(u'{') || FAILED(::CLSIDFromString(as_wide(text), &parsed)))
        return std::nullopt;
    return std::bit_cast<nsm::guid>(parsed);
}

} // namespace girder::registry_ex
