#pragma once

#include "serialisation/visitor.h"

#include <optional>
#include <string>

namespace girder::registry_ex {

/// The braced form of 38 characters (StringFromGUID2).
std::u16string to_text(const nsm::guid& value);

/// Empty when the text is not such a form (CLSIDFromString).
std::optional<nsm::guid> parse_guid(const std::u16string& text);

} // namespace girder::registry_ex
