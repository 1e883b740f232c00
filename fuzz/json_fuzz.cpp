// Any text as JSON: reading it to its depths and skipping it agree on where it is malformed, and what was read comes
// back from what is written of it.

#include "require.h"
#include "serialisation/load_exception.h"
#include "update/json_reader.h"
#include "update/json_writer.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

using fuzz::require;
using namespace girder;
using json::reader;
using json::writer;
using nsm::details::load_exception;

/// Where the text is malformed; empty when it is not, or is refused for what it holds.
std::optional<nsm::details::text_position> malformed_at(const auto& read)
{
    std::optional<nsm::details::text_position> position;
    fuzz::succeeds<load_exception>(read, [&](const load_exception& error) { position = error.position(); });
    return position;
}

/// What does not depend on escapes and on ranges of numbers.
void walk(const nsm::value_reader& value)
{
    const std::uint32_t kinds = dynamic_cast<const reader&>(value).kinds();
    if ((kinds & json::object_kind) != 0)
        value.visit_members([](nsm::value_name, const nsm::value_reader& member) { walk(member); });
    else if (kinds == (json::present | json::array_or_blob_kind))
        value.visit_elements([](const nsm::value_reader& element) { walk(element); });
    else if ((kinds & json::boolean_kind) != 0)
        value.as_boolean();
}

bool reads(const auto& read)
{
    return fuzz::succeeds<load_exception>(read);
}

void check_number(const reader& value)
{
    std::optional<double> real;
    reads([&] { real = value.as_double(); });
    reads([&] { require(static_cast<double>(value.as_unsigned()) == *real); });
    reads([&] { require(static_cast<double>(value.as_signed()) == *real); });
}

/// Whoever expects the members in reverse gets the same ones, as far as their names are such as can be expected.
void check_names(const nsm::value_reader& object)
{
    std::vector<std::string> names;
    object.visit_members([&](nsm::value_name name, const nsm::value_reader&) { names.emplace_back(name.text); });
    const std::vector<std::string_view> expected(names.rbegin(), names.rend());
    if (std::ranges::any_of(names, [](std::string_view name) { return name.find_first_of("\"\\") != name.npos; }))
        return;
    auto next = names.begin();
    object.visit_named(expected, [&](std::size_t index, const nsm::value_reader&) {
        require(next != names.end() && expected[index] == *next++);
    });
    require(next == names.end());
}

void copy(const nsm::value_reader& value, nsm::value_name name, writer& out)
{
    const auto& source = dynamic_cast<const reader&>(value);
    const std::uint32_t kinds = source.kinds();
    if (kinds == 0) {
        out.write_null(name);
    } else if ((kinds & json::object_kind) != 0) {
        check_names(value);
        out.begin_structure(name, 0);
        value.visit_members(
            [&out](nsm::value_name member, const nsm::value_reader& inner) { copy(inner, member, out); });
        out.end_structure();
    } else if ((kinds & json::string_kind) != 0) {
        reads([&] { value.as_date(); });
        reads([&] { value.as_guid(); });
        reads([&] { value.as_binary(); });
        out.write_string(name, value.as_string());
    } else if ((kinds & json::boolean_kind) != 0) {
        out.write_boolean(name, value.as_boolean());
    } else if ((kinds & json::number_kind) != 0) {
        check_number(source);
        if (!reads([&] { out.write_unsigned(name, value.as_unsigned()); }))
            out.write_null(name);
    } else {
        out.begin_array(name, 0);
        value.visit_elements([&out](const nsm::value_reader& element) { copy(element, {}, out); });
        out.end_array();
    }
}

std::string copy_of(const reader& document)
{
    writer out;
    copy(document, "copy", out);
    return out.finish();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const reader document(text);
    const auto skipped = malformed_at([&] { document.find("a name that is not there").kinds(); });
    const auto walked = malformed_at([&] { walk(document); });
    // Escapes in names are looked at by those who read the names.
    const bool escapes = text.find('\\') != std::string_view::npos;
    if (walked)
        require(escapes || malformed_at([&] { document.expect_end(); }) == walked);
    require(!skipped || (escapes ? walked.has_value() : skipped == walked));
    std::string first;
    if (!reads([&] { first = copy_of(document); }))
        return 0;
    // A text that begins with 0x reads as a number: from the second copy on nothing changes.
    std::string second;
    if (reads([&] { second = copy_of(reader(first).find("copy")); }))
        require(reads([&] { require(copy_of(reader(second).find("copy")) == second); }));
    return 0;
}
