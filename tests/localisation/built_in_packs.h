#pragma once

namespace support {

/// Builds the string tables of the process from the program's built-in packs.
void load_built_in_packs();

} // namespace support
