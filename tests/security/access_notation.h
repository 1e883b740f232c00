#pragma once

#include "security/access_entry.h"

#include <cstdio>
#include <sstream>
#include <string>

namespace support {

/// What an access entry has in the editor.
constexpr unsigned in_editor = 1;

/// The identity of a name in the notation below.
inline std::vector<std::byte> identity_of(const std::string& name)
{
    const auto [authority, part] = name == "SU"   ? std::pair(5, 6)
                                   : name == "WD" ? std::pair(1, 0)
                                   : name == "AU" ? std::pair(5, 11)
                                                  : std::pair(9, std::stoi(name.substr(1)));
    const auto sid =
        tidelink::detail::sid_of_one_part(static_cast<std::uint8_t>(authority), static_cast<std::uint8_t>(part));
    return {sid.begin(), sid.end()};
}

inline tidelink::access_entry entry_of(const std::string& text, unsigned rights)
{
    char sign = 0;
    char who[8] = {};
    unsigned flags = 0;
    if (std::sscanf(text.c_str(), "%c%7[^:/]:%x/%x", &sign, who, &rights, &flags) == 2)
        std::sscanf(text.c_str(), "%*c%*[^/]/%x", &flags);
    const int kind = sign == '?' ? std::stoi(who) : sign == '-';
    return {.kind = tidelink::access_kind{static_cast<std::uint8_t>(kind)},
            .flags = static_cast<std::uint8_t>(flags),
            .mask = rights,
            .sid = sign == '?' ? std::vector<std::byte>() : identity_of(who)};
}

/// An access list from a short notation, one entry after the other: "+" allows, "-" denies, "?9" is another kind by its
/// number; then who, ":" and the rights where they are not the usual ones, "/" and the flags where there are any. "SU",
/// "WD" and "AU" are the system's own short names; "u7" is S-1-9-7, an account that does not exist. "own" is the
/// service's own entry, "closed" the denial that closes a list without others.
inline tidelink::access_list list_of(const std::string& notation, unsigned usual_rights = 0xC0100000)
{
    tidelink::access_list list;
    std::istringstream words(notation);
    for (std::string word; words >> word;)
        list.push_back(entry_of(word == "own"      ? "+SU:c0100004"
                                : word == "closed" ? "-WD:c0000000"
                                                   : word,
                                usual_rights));
    return list;
}

} // namespace support
