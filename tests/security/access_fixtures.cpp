#include "security/access_fixtures.h"

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
    const auto colon = text.find(':');
    const auto slash = text.find('/');
    access_entry entry;
    if (text[0] == '?')
        entry.kind = access_kind{static_cast<std::uint8_t>(number_in(text.substr(1, colon - 1), 10))};
    else
        entry.kind = text[0] == '+' ? access_kind::allowed : access_kind::denied;
    if (text[0] != '?')
        entry.sid = sid_of(text.substr(1, colon - 1));
    entry.mask = number_in(text.substr(colon + 1, slash - colon - 1), 16);
    if (slash != std::string_view::npos)
        entry.flags = static_cast<std::uint8_t>(number_in(text.substr(slash + 1), 16));
    return entry;
}

/// Accounts u0, u1, ...
std::string accounts(std::size_t count, std::string_view rights)
{
    std::string notation;
    for (std::size_t i = 0; i < count; ++i)
        notation += " +u" + std::to_string(i) + ":" + std::string(rights);
    return notation;
}

std::u16string accounts_in_sddl(std::size_t count)
{
    std::u16string sddl;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string number = std::to_string(i);
        sddl += u"(A;;0xc0100000;;;S-1-5-21-1-2-3-" + std::u16string(number.begin(), number.end()) + u")";
    }
    return sddl;
}

std::vector<access_fixture> make_fixtures()
{
    return {
        {.name = "the_default",
         .sddl = u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)",
         .stored = "+SU:c0100004 +WD:c0100000",
         .editor = "+WD:1",
         .saved = "+SU:c0100004 +WD:c0100000",
         .who = {everyone}},
        {.name = "no_list",
         .sddl = u"O:BAG:SY",
         .stored = std::nullopt,
         .editor = "",
         .saved = "+SU:c0100004 -WD:c0000000",
         .who = {everyone}},
        {.name = "an_empty_list",
         .sddl = u"D:",
         .stored = "",
         .editor = "",
         .saved = "+SU:c0100004 -WD:c0000000",
         .who = {nobody}},
        {.name = "the_service_alone",
         .sddl = u"D:(A;;0xc0100004;;;SU)",
         .stored = "+SU:c0100004",
         .editor = "",
         .saved = "+SU:c0100004 -WD:c0000000",
         .who = {nobody_but_service}},
        {.name = "the_service_and_the_closing_denial",
         .sddl = u"D:(A;;0xc0100004;;;SU)(D;;0xc0000000;;;WD)",
         .stored = "+SU:c0100004 -WD:c0000000",
         .editor = "-WD:1",
         .saved = "+SU:c0100004 -WD:c0100000",
         .who = {nobody_but_service}},
        {.name = "a_denial_before_everyone",
         .sddl = u"D:(D;;0xc0100000;;;BU)(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)",
         .stored = "-BU:c0100000 +SU:c0100004 +WD:c0100000",
         .editor = "-BU:1 +WD:1",
         .saved = "+SU:c0100004 -BU:c0100000 +WD:c0100000",
         .who = {everyone, 0, 1}},
        {.name = "a_denial_behind_everyone_has_no_effect_and_stays_there",
         .sddl = u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)(D;;0xc0100000;;;BU)",
         .stored = "+SU:c0100004 +WD:c0100000 -BU:c0100000",
         .editor = "+WD:1 -BU:1",
         .saved = "+SU:c0100004 +WD:c0100000 -BU:c0100000",
         .who = {everyone}},
        {.name = "one_group",
         .sddl = u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;BA)",
         .stored = "+SU:c0100004 +BA:c0100000",
         .editor = "+BA:1",
         .saved = "+SU:c0100004 +BA:c0100000",
         .who = {listed, 1}},
        {.name = "three_allowed_and_one_denied",
         .sddl = u"D:(A;;0xc0100004;;;SU)(D;;0xc0100000;;;S-1-5-21-1-2-3-9)(A;;0xc0100000;;;BA)(A;;0xc0100000;;;BU)"
                 u"(A;;0xc0100000;;;S-1-5-21-1-2-3-8)",
         .stored = "+SU:c0100004 -u9:c0100000 +BA:c0100000 +BU:c0100000 +u8:c0100000",
         .editor = "-u9:1 +BA:1 +BU:1 +u8:1",
         .saved = "+SU:c0100004 -u9:c0100000 +BA:c0100000 +BU:c0100000 +u8:c0100000",
         .who = {listed, 3, 1}},
        {.name = "allowed_before_it_is_denied",
         .sddl = u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;BA)(D;;0xc0100000;;;BA)",
         .stored = "+SU:c0100004 +BA:c0100000 -BA:c0100000",
         .editor = "+BA:1 -BA:1",
         .saved = "+SU:c0100004 +BA:c0100000 -BA:c0100000",
         .who = {listed, 1}},
        {.name = "denied_before_it_is_allowed",
         .sddl = u"D:(A;;0xc0100004;;;SU)(D;;0xc0100000;;;BA)(A;;0xc0100000;;;BA)",
         .stored = "+SU:c0100004 -BA:c0100000 +BA:c0100000",
         .editor = "-BA:1 +BA:1",
         .saved = "+SU:c0100004 -BA:c0100000 +BA:c0100000",
         .who = {nobody_but_service}},
        {.name = "everyone_denied_before_anyone_is_allowed",
         .sddl = u"D:(A;;0xc0100004;;;SU)(D;;0xc0100000;;;BU)(D;;0xc0100000;;;WD)(A;;0xc0100000;;;BA)",
         .stored = "+SU:c0100004 -BU:c0100000 -WD:c0100000 +BA:c0100000",
         .editor = "-BU:1 -WD:1 +BA:1",
         .saved = "+SU:c0100004 -BU:c0100000 -WD:c0100000 +BA:c0100000",
         .who = {denied_first}},
        {.name = "everyone_denied_before_the_service",
         .sddl = u"D:(D;;0xc0100000;;;WD)(A;;0xc0100004;;;SU)",
         .stored = "-WD:c0100000 +SU:c0100004",
         .editor = "-WD:1",
         .saved = "+SU:c0100004 -WD:c0100000",
         .who = {nobody}},
        {.name = "everyone_denied_behind_who_is_allowed",
         .sddl = u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;BA)(D;;0xc0100000;;;WD)(A;;0xc0100000;;;BU)",
         .stored = "+SU:c0100004 +BA:c0100000 -WD:c0100000 +BU:c0100000",
         .editor = "+BA:1 -WD:1 +BU:1",
         .saved = "+SU:c0100004 +BA:c0100000 -WD:c0100000 +BU:c0100000",
         .who = {listed, 1}},
        {.name = "inherited_entries",
         .sddl = u"D:AI(A;;0xc0100004;;;SU)(D;OICIID;0xc0100000;;;BU)(A;CIID;0xc0100000;;;BA)",
         .stored = "+SU:c0100004 -BU:c0100000/13 +BA:c0100000/12",
         .editor = "-BU:1/13 +BA:1/12",
         .saved = "+SU:c0100004 -BU:c0100000/13 +BA:c0100000/12",
         .who = {listed, 1, 1}},
        {.name = "an_entry_that_is_only_inherited",
         .sddl = u"D:(A;;0xc0100004;;;SU)(A;OICIIO;0xc0100000;;;WD)",
         .stored = "+SU:c0100004 +WD:c0100000/b",
         .editor = "+WD:1/b",
         .saved = "+SU:c0100004 +WD:c0100000/b",
         .who = {nobody_but_service}},
        {.name = "accounts_that_no_longer_exist",
         .sddl = u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;S-1-5-21-1-2-3-4444)(D;;0xc0100000;;;S-1-5-21-1-2-3-5555)",
         .stored = "+SU:c0100004 +u4444:c0100000 -u5555:c0100000",
         .editor = "+u4444:1 -u5555:1",
         .saved = "+SU:c0100004 +u4444:c0100000 -u5555:c0100000",
         .who = {listed, 1, 1}},
        {.name = "the_same_account_twice",
         .sddl = u"D:(A;;0xc0100004;;;SU)(A;;0x80000000;;;BA)(A;;0x40000000;;;BA)",
         .stored = "+SU:c0100004 +BA:80000000 +BA:40000000",
         .editor = "+BA:1 +BA:1",
         .saved = "+SU:c0100004 +BA:c0100000 +BA:c0100000",
         .who = {listed, 1}},
        {.name = "the_mark_on_another_identity",
         .sddl = u"D:(A;;0xc0100004;;;SU)(A;;0xc0100004;;;BA)",
         .stored = "+SU:c0100004 +BA:c0100004",
         .editor = "",
         .saved = "+SU:c0100004 -WD:c0000000",
         .who = {listed, 1},
         .lost = 1},
        {.name = "every_right_to_a_file_has_the_mark",
         .sddl = u"D:(A;;0xc0100004;;;SU)(A;;FA;;;BA)(A;;0xc0100000;;;BU)",
         .stored = "+SU:c0100004 +BA:1f01ff +BU:c0100000",
         .editor = "+BU:1",
         .saved = "+SU:c0100004 +BU:c0100000",
         .who = {listed, 2},
         .lost = 1},
        {.name = "the_mark_and_nothing_else",
         .sddl = u"D:(A;;0x4;;;SU)(A;;0x4;;;BA)",
         .stored = "+SU:4 +BA:4",
         .editor = "",
         .saved = "+SU:c0100004 -WD:c0000000",
         .who = {nobody},
         .lost = 1},
        {.name = "the_mark_denied_to_the_service",
         .sddl = u"D:(D;;0x4;;;SU)(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)",
         .stored = "-SU:4 +SU:c0100004 +WD:c0100000",
         .editor = "+WD:1",
         .saved = "+SU:c0100004 +WD:c0100000",
         .who = {everyone},
         .lost = 1},
        {.name = "the_service_without_the_mark_is_shown",
         .sddl = u"D:(A;;0xc0100000;;;SU)",
         .stored = "+SU:c0100000",
         .editor = "+SU:1",
         .saved = "+SU:c0100004 +SU:c0100000",
         .who = {nobody_but_service}},
        {.name = "the_service_last_moves_to_the_front",
         .sddl = u"D:(A;;0xc0100000;;;BA)(A;;0xc0100004;;;SU)",
         .stored = "+BA:c0100000 +SU:c0100004",
         .editor = "+BA:1",
         .saved = "+SU:c0100004 +BA:c0100000",
         .who = {listed, 1}},
        {.name = "without_the_service",
         .sddl = u"D:(A;;GA;;;BA)",
         .stored = "+BA:10000000",
         .editor = "+BA:1",
         .saved = "+SU:c0100004 +BA:c0100000",
         .who = {listed, 1}},
        {.name = "no_rights_at_all_become_the_one",
         .sddl = u"",
         .stored = "+SU:c0100004 +BA:0",
         .editor = "+BA:1",
         .saved = "+SU:c0100004 +BA:c0100000",
         .who = {nobody_but_service}},
        {.name = "a_protected_list_loses_its_protection",
         .sddl = u"D:P(A;;0xc0100004;;;SU)(A;;0xc0100000;;;BU)",
         .stored = "+SU:c0100004 +BU:c0100000",
         .editor = "+BU:1",
         .saved = "+SU:c0100004 +BU:c0100000",
         .who = {listed, 1}},
        {.name = "audit_entries_are_not_kept",
         .sddl = u"D:(A;;0xc0100004;;;SU)(A;;0xc0100000;;;WD)S:(AU;SAFA;0xc0100000;;;WD)",
         .stored = "+SU:c0100004 +WD:c0100000",
         .editor = "+WD:1",
         .saved = "+SU:c0100004 +WD:c0100000",
         .who = {everyone}},
        {.name = "an_audit_entry_among_the_others",
         .sddl = u"",
         .stored = "+SU:c0100004 ?2:c0100000/c0 +WD:c0100000",
         .editor = "+WD:1",
         .saved = "+SU:c0100004 +WD:c0100000",
         .who = {everyone},
         .lost = 1},
        {.name = "conditional_entries",
         .sddl = u"",
         .stored = "+SU:c0100004 ?9:c0100000 ?10:c0100000 +BA:c0100000",
         .editor = "+BA:1",
         .saved = "+SU:c0100004 +BA:c0100000",
         .who = {listed, 1},
         .lost = 2},
        {.name = "object_entries_one_of_them_with_the_mark",
         .sddl = u"",
         .stored = "+SU:c0100004 ?5:c0100000 ?6:c0100004",
         .editor = "",
         .saved = "+SU:c0100004 -WD:c0000000",
         .who = {nobody_but_service},
         .lost = 2},
        {.name = "two_hundred_accounts",
         .sddl = u"D:(A;;0xc0100004;;;SU)" + accounts_in_sddl(200),
         .stored = "+SU:c0100004" + accounts(200, "c0100000"),
         .editor = accounts(200, "1").substr(1),
         .saved = "+SU:c0100004" + accounts(200, "c0100000"),
         .who = {listed, 200}},
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
        notation << ':' << std::hex << entry.mask;
        if (entry.flags != 0)
            notation << '/' << static_cast<int>(entry.flags);
    }
    return notation.str();
}

const std::vector<access_fixture>& access_fixtures()
{
    static const std::vector<access_fixture> fixtures = make_fixtures();
    return fixtures;
}

} // namespace support
