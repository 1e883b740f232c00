// A registry value of any type and bytes, as any program may leave it, is read or refused with a listed text.

#include "registry/single_value_reader.h"
#include "require.h"
#include "serialisation/field_values.h"
#include "serialisation/guid_text.h"
#include "serialisation/load_exception.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <vector>

namespace {

using fuzz::require;
using namespace girder;
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

bool reads(const auto& read)
{
    return fuzz::succeeds<load_exception>(read, require_listed);
}

} // namespace

/// A byte for the type, then the value's.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const auto bytes = std::as_bytes(std::span(data, size).subspan(1));
    const stored_value stored{.type = data[0], .data = {bytes.begin(), bytes.end()}};
    const single_value_reader value(stored, 0);
    reads([&] { require(value.as_string().size() * sizeof(char16_t) <= bytes.size()); });
    reads([&] { require(value.as_binary() == stored.data); });
    reads([&] { require(value.as_boolean() == (value.as_unsigned() != 0)); });
    reads([&] { require(static_cast<std::uint64_t>(value.as_signed()) == value.as_unsigned() || bytes.size() == 4); });
    reads([&] { value.as_date(); });
    reads([&] { require(nsm::parse_guid(nsm::to_text(value.as_guid())) == value.as_guid()); });
    // A number is out of the smaller type's range more often.
    require(!reads([&] { value.as_float(); }) || reads([&] { value.as_double(); }));
    reads([&] {
        std::vector<std::uint32_t> numbers;
        nsm::read_value(value, numbers);
        require(numbers.size() * sizeof(std::uint32_t) == bytes.size());
    });
    return 0;
}
