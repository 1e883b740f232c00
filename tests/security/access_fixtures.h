#pragma once

#include "security/access_summary.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace support {

/// A stored list with everything that has to become of it, in the notation of access_notation.h.
struct access_fixture {
    const char* name;
    std::optional<std::string> stored; ///< empty: no list
    std::string editor;                ///< what the editor shows
    std::string saved;                 ///< what is stored when that is saved unchanged
    tidelink::access_summary who;      ///< who can connect before that
    std::size_t lost = 0;              ///< entries that are gone when that is saved
};

inline std::vector<access_fixture> access_fixtures()
{
    using enum tidelink::access_reach;
    std::string many;
    for (int account = 0; account < 200; ++account)
        many += " +u" + std::to_string(account);
    return {
        {"the_default", "own +WD", "+WD", "own +WD", {everyone}},
        {"no_list", std::nullopt, "", "own closed", {everyone}},
        {"an_empty_list", "", "", "own closed", {nobody}},
        {"the_service_alone", "own", "", "own closed", {nobody_but_service}},
        {"the_service_and_the_closing_denial", "own closed", "-WD", "own -WD", {nobody_but_service}},
        {"denied_before_everyone", "-u1 own +WD", "-u1 +WD", "own -u1 +WD", {everyone, 0, 1}},
        {"denied_in_vain_behind_everyone", "own +WD -u1", "+WD -u1", "own +WD -u1", {everyone}},
        {"one_allowed", "own +AU", "+AU", "own +AU", {listed, 1}},
        {"allowed_before_it_is_denied", "own +AU -AU", "+AU -AU", "own +AU -AU", {listed, 1}},
        {"denied_before_it_is_allowed", "own -AU +AU", "-AU +AU", "own -AU +AU", {nobody_but_service}},
        {"everyone_denied_first", "own -u1 -WD +AU", "-u1 -WD +AU", "own -u1 -WD +AU", {denied_first}},
        {"everyone_denied_before_the_service", "-WD own", "-WD", "own -WD", {nobody}},
        {"everyone_denied_later", "own +AU -WD +u1", "+AU -WD +u1", "own +AU -WD +u1", {listed, 1}},
        {"denied_to_descendants", "own -WD/b -AU/b +AU", "-WD/b -AU/b +AU", "own -WD/b -AU/b +AU", {listed, 1}},
        {"inherited", "own -u1/13 +AU/12", "-u1/13 +AU/12", "own -u1/13 +AU/12", {listed, 1, 1}},
        {"only_for_descendants", "own +WD/b", "+WD/b", "own +WD/b", {nobody_but_service}},
        {"the_same_account_twice", "own +AU:80000000 +AU:40000000", "+AU +AU", "own +AU +AU", {listed, 1}},
        {"the_mark_on_another", "own +AU:c0100004", "", "own closed", {listed, 1}, 1},
        {"the_mark_and_nothing_else", "+SU:4 +AU:4", "", "own closed", {nobody}, 1},
        {"the_mark_denied_to_the_service", "-SU:4 own +WD", "+WD", "own +WD", {everyone}, 1},
        {"the_service_without_the_mark", "+SU", "+SU", "own +SU", {nobody_but_service}},
        {"no_rights_become_the_one", "own +AU:0", "+AU", "own +AU", {nobody_but_service}},
        {"audit_entry", "own ?2/c0 +WD", "+WD", "own +WD", {everyone}, 1},
        {"conditional_entries", "own ?9 ?10 +AU", "+AU", "own +AU", {listed, 1}, 2},
        {"object_entries", "own ?5 ?6:c0100004", "", "own closed", {nobody_but_service}, 2},
        {"two_hundred", "own" + many, many, "own" + many, {listed, 200}},
    };
}

} // namespace support
