#pragma once

#include "serialisation/visitor.h"

#include <optional>
#include <string>
#include <string_view>

namespace girder::nsm {

/// The braced form of 38 characters that StringFromGUID2 writes: {35B11BAB-5238-4E93-B06A-92332C5D20FA}.
std::u16string to_text(const guid& value);

/// Empty when the text is not such a form. Takes digits of both cases, like CLSIDFromString.
std::optional<guid> parse_guid(std::u16string_view text);

} // namespace girder::nsm
