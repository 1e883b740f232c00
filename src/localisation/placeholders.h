#pragma once

#include "localisation/string_entry.h"

namespace tidelink {

/// Whether a translation may stand for another entry wherever that is used as a format: both are single texts or both
/// are lists, and no text of the translation has a malformed placeholder, or one for an argument that the text which it
/// replaces has none for. Leaving arguments out is allowed. A text without an opening brace always may; one with a
/// brace may not when it or the text that it replaces is longer than 1,024 units, so that a pack of many short texts
/// for a long one takes no more time than its size explains.
bool placeholders_fit(const StringEntry& translation, const StringEntry& replaced);

} // namespace tidelink
