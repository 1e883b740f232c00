#pragma once

#include "security/access_entry.h"
#include "security/access_summary.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Access lists in a short notation, one entry after the other: "+" allows, "-" denies, "?9" is another kind by its
// number; then who, ":" and the rights unless they are c0100000, "/" and the flags where there are any. "SU", "WD",
// "BA" and "BU" are the system's own short names; "u7" is the account S-1-5-21-1-2-3-7.

namespace support {

/// The SID that a name of the notation stands for.
std::vector<std::byte> sid_of(std::string_view name);

tidelink::access_list list_of(std::string_view notation);
std::string notation_of(const tidelink::access_list& list);

/// A stored list with everything that has to become of it.
struct access_fixture {
    const char* name;
    std::optional<std::string> stored; ///< empty: no list
    std::string editor;                ///< what the editor shows
    std::string saved;                 ///< what is stored when the editor's form is saved unchanged
    tidelink::access_summary who;      ///< who can connect before that
    std::size_t lost = 0;              ///< entries that are gone when that is saved
};

const std::vector<access_fixture>& access_fixtures();

} // namespace support
