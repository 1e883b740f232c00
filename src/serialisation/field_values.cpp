#include "serialisation/field_values.h"

#include "serialisation/load_exception.h"

#include <limits>
#include <utility>

namespace girder::nsm {
namespace {

constexpr std::size_t number_size = 4;

std::vector<std::byte> to_little_endian(const std::vector<std::uint32_t>& numbers)
{
    std::vector<std::byte> bytes;
    bytes.reserve(numbers.size() * number_size);
    for (const std::uint32_t number : numbers)
        for (unsigned shift = 0; shift < 32; shift += 8)
            bytes.push_back(static_cast<std::byte>(number >> shift));
    return bytes;
}

std::vector<std::uint32_t> from_little_endian(const std::vector<std::byte>& bytes)
{
    if (bytes.size() % number_size != 0)
        throw details::load_exception(details::bad_format);
    std::vector<std::uint32_t> numbers(bytes.size() / number_size);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        numbers[i / number_size] |= std::to_integer<std::uint32_t>(bytes[i]) << (8 * (i % number_size));
    return numbers;
}

} // namespace

void write_value(value_writer& writer, value_name name, const std::u16string& value)
{
    writer.write_string(name, value);
}

void write_value(value_writer& writer, value_name name, bool value)
{
    writer.write_boolean(name, value);
}

void write_value(value_writer& writer, value_name name, const std::vector<std::uint32_t>& value)
{
    if ((writer.capabilities() & scalar_arrays_as_binary) != 0) {
        writer.write_binary(name, to_little_endian(value));
        return;
    }
    writer.begin_array(name, static_cast<std::uint32_t>(value.size()));
    for (const std::uint32_t number : value)
        writer.write_unsigned({}, number);
    writer.end_array();
}

void read_value(const value_reader& reader, std::u16string& value)
{
    value = reader.as_string();
}

void read_value(const value_reader& reader, bool& value)
{
    value = reader.as_boolean();
}

void read_value(const value_reader& reader, std::uint32_t& value)
{
    const std::uint64_t number = reader.as_unsigned();
    if (number > std::numeric_limits<std::uint32_t>::max())
        throw details::load_exception(details::number_expected);
    value = static_cast<std::uint32_t>(number);
}

void read_value(const value_reader& reader, std::uint64_t& value)
{
    value = reader.as_unsigned();
}

void read_value(const value_reader& reader, std::vector<std::uint32_t>& value)
{
    if (reader.is_binary()) {
        value = from_little_endian(reader.as_binary());
        return;
    }
    std::vector<std::uint32_t> numbers;
    reader.visit_elements([&numbers](const value_reader& element) { read_value(element, numbers.emplace_back()); });
    value = std::move(numbers);
}

} // namespace girder::nsm
