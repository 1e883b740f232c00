#pragma once

#include "serialisation/visitor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// How the types of a record's fields are written and read.

namespace girder::nsm {

void write_value(value_writer& writer, value_name name, const std::u16string& value);
void write_value(value_writer& writer, value_name name, bool value);
/// As one binary value of 4 little-endian bytes for each number where the store can do that, else as an array.
void write_value(value_writer& writer, value_name name, const std::vector<std::uint32_t>& value);

// The value is unchanged when reading throws details::load_exception.

void read_value(const value_reader& reader, std::u16string& value);
void read_value(const value_reader& reader, bool& value);
/// Larger numbers are "Number expected".
void read_value(const value_reader& reader, std::uint32_t& value);
void read_value(const value_reader& reader, std::uint64_t& value);
/// Accepts both representations, whatever the store can do.
void read_value(const value_reader& reader, std::vector<std::uint32_t>& value);

/// An array; `Value` has a read_value() of its own.
template <typename Value>
void read_value(const value_reader& reader, std::vector<Value>& value)
{
    std::vector<Value> read;
    reader.visit_elements([&read](const value_reader& element) { read_value(element, read.emplace_back()); });
    value = std::move(read);
}

/// Empty for a null.
template <typename Value>
void read_value(const value_reader& reader, std::optional<Value>& value)
{
    std::optional<Value> read;
    if (!reader.is_null())
        read_value(reader, read.emplace());
    value = std::move(read);
}

} // namespace girder::nsm
