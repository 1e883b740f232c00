#include "security/access_fixtures.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <ranges>
#include <sstream>
#include <stdexcept>

namespace support {
namespace {

using tidelink::access_entry;
using tidelink::access_kind;
using tidelink::access_list;
using enum tidelink::access_reach;

constexpr std::uint32_t what_people_grant = 0xC0100000;

const std::map<std::string, std::vector<std::uint32_t>, std::less<>>& named_sids()
{
    // The authority, then the parts.
    static const std::map<std::string, std::vector<std::uint32_t>, std::less<>> sids = {
        {"SU", {5, 6}}, {"WD", {1, 0}}, {"BA", {5, 32, 544}}, {"BU", {5, 32, 545}}};
    return sids;
}

std::uint32_t number_in(std::string_view text, int base)
{
    std::uint32_t number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size())
        throw std::invalid_argument("no number: " + std::string(text));
    return number;
}

std::string name_of(const std::vector<std::byte>& sid)
{
    for (const auto& name : named_sids() | std::views::keys)
        if (sid == sid_of(name))
            return name;
    for (std::uint32_t account = 0; account < 10'000; ++account)
        if (sid == sid_of("u" + std::to_string(account)))
            return "u" + std::to_string(account);
    return "someone else";
}

access_entry entry_of(std::string_view text)
{
    const auto slash = std::min(text.find('/'), text.size());
    const auto colon = std::min(text.find(':'), slash);
    access_entry entry;
    entry.mask = what_people_grant;
    if (text[0] == '?')
        entry.kind = access_kind{static_cast<std::uint8_t>(number_in(text.substr(1, colon - 1), 10))};
    else
        entry.kind = text[0] == '+' ? access_kind::allowed : access_kind::denied;
    if (text[0] != '?')
        entry.sid = sid_of(text.substr(1, colon - 1));
    if (colon < slash)
        entry.mask = number_in(text.substr(colon + 1, slash - colon - 1), 16);
    if (slash < text.size())
        entry.flags = static_cast<std::uint8_t>(number_in(text.substr(slash + 1), 16));
    return entry;
}

/// Accounts u0, u1, ...
std::string accounts(std::size_t count, std::string_view rights)
{
    std::string notation;
    for (std::size_t i = 0; i < count; ++i)
        notation += " +u" + std::to_string(i) + std::string(rights);
    return notation;
}

std::vector<access_fixture> make_fixtures()
{
    return {
        {"the_default", "+SU:c0100004 +WD", "+WD:1", "+SU:c0100004 +WD", {everyone}},
        {"no_list", std::nullopt, "", "+SU:c0100004 -WD:c0000000", {everyone}},
        {"an_empty_list", "", "", "+SU:c0100004 -WD:c0000000", {nobody}},
        {"the_service_alone", "+SU:c0100004", "", "+SU:c0100004 -WD:c0000000", {nobody_but_service}},
        {"the_service_and_the_closing_denial",
         "+SU:c0100004 -WD:c0000000",
         "-WD:1",
         "+SU:c0100004 -WD",
         {nobody_but_service}},
        {"a_denial_before_everyone", "-BU +SU:c0100004 +WD", "-BU:1 +WD:1", "+SU:c0100004 -BU +WD", {everyone, 0, 1}},
        {"a_denial_behind_everyone_has_no_effect_and_stays_there",
         "+SU:c0100004 +WD -BU",
         "+WD:1 -BU:1",
         "+SU:c0100004 +WD -BU",
         {everyone}},
        {"one_group", "+SU:c0100004 +BA", "+BA:1", "+SU:c0100004 +BA", {listed, 1}},
        {"three_allowed_and_one_denied",
         "+SU:c0100004 -u9 +BA +BU +u8",
         "-u9:1 +BA:1 +BU:1 +u8:1",
         "+SU:c0100004 -u9 +BA +BU +u8",
         {listed, 3, 1}},
        {"allowed_before_it_is_denied", "+SU:c0100004 +BA -BA", "+BA:1 -BA:1", "+SU:c0100004 +BA -BA", {listed, 1}},
        {"denied_before_it_is_allowed",
         "+SU:c0100004 -BA +BA",
         "-BA:1 +BA:1",
         "+SU:c0100004 -BA +BA",
         {nobody_but_service}},
        {"everyone_denied_before_anyone_is_allowed",
         "+SU:c0100004 -BU -WD +BA",
         "-BU:1 -WD:1 +BA:1",
         "+SU:c0100004 -BU -WD +BA",
         {denied_first}},
        {"everyone_denied_before_the_service", "-WD +SU:c0100004", "-WD:1", "+SU:c0100004 -WD", {nobody}},
        {"everyone_denied_behind_who_is_allowed",
         "+SU:c0100004 +BA -WD +BU",
         "+BA:1 -WD:1 +BU:1",
         "+SU:c0100004 +BA -WD +BU",
         {listed, 1}},
        {"inherited_entries",
         "+SU:c0100004 -BU/13 +BA/12",
         "-BU:1/13 +BA:1/12",
         "+SU:c0100004 -BU/13 +BA/12",
         {listed, 1, 1}},
        {"an_entry_that_is_only_inherited",
         "+SU:c0100004 +WD/b",
         "+WD:1/b",
         "+SU:c0100004 +WD/b",
         {nobody_but_service}},
        {"accounts_that_no_longer_exist",
         "+SU:c0100004 +u4444 -u5555",
         "+u4444:1 -u5555:1",
         "+SU:c0100004 +u4444 -u5555",
         {listed, 1, 1}},
        {"the_same_account_twice",
         "+SU:c0100004 +BA:80000000 +BA:40000000",
         "+BA:1 +BA:1",
         "+SU:c0100004 +BA +BA",
         {listed, 1}},
        {"the_mark_on_another_identity", "+SU:c0100004 +BA:c0100004", "", "+SU:c0100004 -WD:c0000000", {listed, 1}, 1},
        {"every_right_to_a_file_has_the_mark",
         "+SU:c0100004 +BA:1f01ff +BU",
         "+BU:1",
         "+SU:c0100004 +BU",
         {listed, 2},
         1},
        {"the_mark_and_nothing_else", "+SU:4 +BA:4", "", "+SU:c0100004 -WD:c0000000", {nobody}, 1},
        {"the_mark_denied_to_the_service", "-SU:4 +SU:c0100004 +WD", "+WD:1", "+SU:c0100004 +WD", {everyone}, 1},
        {"the_service_without_the_mark_is_shown", "+SU", "+SU:1", "+SU:c0100004 +SU", {nobody_but_service}},
        {"the_service_last_moves_to_the_front", "+BA +SU:c0100004", "+BA:1", "+SU:c0100004 +BA", {listed, 1}},
        {"without_the_service", "+BA:10000000", "+BA:1", "+SU:c0100004 +BA", {listed, 1}},
        {"no_rights_at_all_become_the_one", "+SU:c0100004 +BA:0", "+BA:1", "+SU:c0100004 +BA", {nobody_but_service}},
        {"an_audit_entry_among_the_others", "+SU:c0100004 ?2/c0 +WD", "+WD:1", "+SU:c0100004 +WD", {everyone}, 1},
        {"conditional_entries", "+SU:c0100004 ?9 ?10 +BA", "+BA:1", "+SU:c0100004 +BA", {listed, 1}, 2},
        {"object_entries_one_of_them_with_the_mark",
         "+SU:c0100004 ?5 ?6:c0100004",
         "",
         "+SU:c0100004 -WD:c0000000",
         {nobody_but_service},
         2},
        {"two_hundred_accounts",
         "+SU:c0100004" + accounts(200, ""),
         accounts(200, ":1").substr(1),
         "+SU:c0100004" + accounts(200, ""),
         {listed, 200}},
    };
}

} // namespace

std::vector<std::byte> sid_of(std::string_view name)
{
    const auto known = named_sids().find(name);
    const std::vector<std::uint32_t> numbers =
        known != named_sids().end() ? known->second
                                    : std::vector<std::uint32_t>{5, 21, 1, 2, 3, number_in(name.substr(1), 10)};
    std::vector<std::byte> sid(8);
    sid[0] = std::byte{1};
    sid[1] = static_cast<std::byte>(numbers.size() - 1);
    sid[7] = static_cast<std::byte>(numbers[0]);
    for (const std::uint32_t part : numbers | std::views::drop(1))
        for (unsigned shift = 0; shift < 32; shift += 8)
            sid.push_back(static_cast<std::byte>(part >> shift));
    return sid;
}

access_list list_of(std::string_view notation)
{
    access_list list;
    std::istringstream entries{std::string(notation)};
    for (std::string entry; entries >> entry;)
        list.push_back(entry_of(entry));
    return list;
}

std::string notation_of(const access_list& list)
{
    std::ostringstream notation;
    for (const access_entry& entry : list) {
        if (&entry != &list.front())
            notation << ' ';
        if (entry.kind == access_kind::allowed || entry.kind == access_kind::denied)
            notation << (entry.kind == access_kind::allowed ? '+' : '-') << name_of(entry.sid);
        else
            notation << '?' << std::dec << static_cast<int>(entry.kind);
        if (entry.mask != what_people_grant)
            notation << ':' << std::hex << entry.mask;
        if (entry.flags != 0)
            notation << '/' << std::hex << static_cast<int>(entry.flags);
    }
    return notation.str();
}

const std::vector<access_fixture>& access_fixtures()
{
    static const std::vector<access_fixture> fixtures = make_fixtures();
    return fixtures;
}

} // namespace support
