#include "app/access_command.h"

#include "app/error_log.h"
#include "app/message_texts.h"
#include "base/system_error.h"
#include "format/compile.h"
#include "format/format.h"
#include "localisation/string_tables.h"
#include "security/access_summary.h"
#include "security/access_translation.h"
#include "security/security_descriptor.h"
#include "settings/server_settings.h"
#include "string_ids.h"

#include <cstdint>
#include <exception>
#include <optional>

namespace tidelink {
namespace {

using girder::ui::message_icon;

/// Positions in the list of words.
namespace words {
constexpr std::uint32_t everyone = 0;
constexpr std::uint32_t one = 2;
constexpr std::uint32_t several = 4;
constexpr std::uint32_t nobody_but_service = 6;
constexpr std::uint32_t denied_first = 7;
constexpr std::uint32_t nobody = 8;
constexpr std::uint32_t unreadable = 9;
} // namespace words

std::uint32_t words_for(const access_summary& who)
{
    const std::uint32_t some_denied = who.denied > 0 ? 1 : 0;
    switch (who.reach) {
    case access_reach::everyone:
        return words::everyone + some_denied;
    case access_reach::listed:
        return (who.allowed == 1 ? words::one : words::several) + some_denied;
    case access_reach::nobody_but_service:
        return words::nobody_but_service;
    case access_reach::denied_first:
        return words::denied_first;
    case access_reach::nobody:
        break;
    }
    return words::nobody;
}

std::size_t entries_lost_by_editing(const security_descriptor& stored)
{
    return lost_entries(entries_of(stored).value_or(access_list())) + audit_entry_count(stored);
}

/// The descriptor itself when it can be read, else the default one when that is wanted.
std::optional<std::u16string> descriptor_to_edit(HWND owner, const std::u16string& descriptor)
{
    try {
        ParseDescriptor(descriptor);
        return descriptor;
    } catch (const girder::system_error& error) {
        log_error(std::current_exception());
        show_operation_error(owner, error_text(error));
    }
    if (!ask_yes_no(owner, text(string_id::security_title), text(string_id::start_from_default_list),
                    message_icon::question))
        return std::nullopt;
    return DefaultServerSettings().securityDescriptor;
}

bool may_lose_entries(HWND owner, std::size_t count)
{
    return count == 0 || ask_yes_no(owner, text(string_id::security_title),
                                    fmtkit::format(fmtkit::compile(text(string_id::lose_access_entries)), count),
                                    message_icon::warning);
}

} // namespace

std::u16string access_words(const std::u16string& descriptor)
try {
    const access_summary who = summarise(entries_of(ParseDescriptor(descriptor)));
    return fmtkit::format(fmtkit::compile(item(string_id::access_words, words_for(who))), who.allowed, who.denied);
} catch (const girder::system_error&) {
    return std::u16string(item(string_id::access_words, words::unreadable));
}

std::u16string edit_access(HWND owner, const std::u16string& descriptor, const access_editor& editor)
{
    const std::u16string title(text(string_id::security_title));
    const std::u16string right(text(string_id::connect_to_server));
    const std::optional<std::u16string> before = descriptor_to_edit(owner, descriptor);
    if (!before)
        return {};
    std::u16string after = EditServerSecurity(owner, *before, title, right, editor);
    if (after.empty() || !may_lose_entries(owner, entries_lost_by_editing(ParseDescriptor(*before))))
        return {};
    return after;
}

} // namespace tidelink
