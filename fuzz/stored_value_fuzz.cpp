// Registry values of any type and bytes, as any program may leave them: each is read or refused with a listed text, and
// whatever stands in a settings key, a record comes out of it.

#include "registry/single_value_reader.h"
#include "require.h"
#include "serialisation/guid_text.h"
#include "serialisation/load_exception.h"
#include "settings/server_settings.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using fuzz::require;
using namespace girder;
using namespace tidelink;
using nsm::details::load_exception;
using registry_ex::single_value_reader;
using registry_ex::stored_value;

void require_listed(const load_exception& error)
{
    using namespace nsm::details;
    constexpr std::array listed{object_expected,  array_expected, string_expected, number_expected,
                                boolean_expected, date_expected,  bad_format};
    require(std::ranges::find(listed, std::string_view(error.what())) != listed.end());
}

using named_values = std::vector<std::pair<std::string_view, stored_value>>;

/// A key without subkeys.
class fuzzed_key final : public single_value_reader {
public:
    explicit fuzzed_key(named_values values) : single_value_reader({}, 0), values_(std::move(values)) {}

    void visit_members(const member_visitor& visit) const override
    {
        for (const auto& [name, value] : values_)
            visit(name, single_value_reader(value, 0));
    }

private:
    named_values values_;
};

bool reads(const auto& read)
{
    return fuzz::succeeds<load_exception>(read, require_listed);
}

void check_value(const stored_value& stored)
{
    const single_value_reader value(stored, 0);
    const std::size_t size = stored.data.size();
    reads([&] { require(value.as_string().size() * sizeof(char16_t) <= size); });
    reads([&] { require(value.as_binary() == stored.data); });
    reads([&] { require(value.as_boolean() == (value.as_unsigned() != 0)); });
    reads([&] { require(static_cast<std::uint64_t>(value.as_signed()) == value.as_unsigned() || size == 4); });
    reads([&] { value.as_date(); });
    reads([&] { require(nsm::parse_guid(nsm::to_text(value.as_guid())) == value.as_guid()); });
    // A number is out of the smaller type's range more often.
    require(!reads([&] { value.as_float(); }) || reads([&] { value.as_double(); }));
    reads([&] {
        std::vector<std::uint32_t> numbers;
        nsm::read_value(value, numbers);
        require(numbers.size() * sizeof(std::uint32_t) == size);
    });
}

void check_key(const fuzzed_key& key)
{
    ServerSettings tolerant = DefaultServerSettings();
    std::size_t failures = 0;
    ReadTolerantly(key, tolerant, [&failures](std::string_view, const load_exception& error) {
        ++failures;
        require_listed(error);
    });
    ServerSettings strict = DefaultServerSettings();
    const bool readable = reads([&] { Read(key, strict); });
    require(readable == (failures == 0));
    require(!readable || strict == tolerant);
}

} // namespace

/// Each value: a byte for the name, one for the type, one for the size, and its bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr auto fields = server_settings_fields.names;
    constexpr std::size_t header = 3;
    constexpr std::size_t most_values = 6; // refusals are slow
    std::span<const std::byte> rest = std::as_bytes(std::span(data, size));
    named_values values;
    while (rest.size() >= header && values.size() < most_values) {
        const std::size_t field = std::to_integer<std::size_t>(rest[0]) % (fields.size() + 1);
        const auto type = std::to_integer<std::uint32_t>(rest[1]);
        const std::size_t length = std::min(std::to_integer<std::size_t>(rest[2]), rest.size() - header);
        const auto bytes = rest.subspan(header, length);
        values.emplace_back(field < fields.size() ? fields[field] : "other",
                            stored_value{.type = type, .data = {bytes.begin(), bytes.end()}});
        rest = rest.subspan(header + length);
    }
    if (!values.empty())
        check_value(values.front().second);
    check_key(fuzzed_key(std::move(values)));
    return 0;
}
