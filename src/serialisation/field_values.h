#pragma once

#include "serialisation/visitor.h"

#include <cstdint>
#include <string>
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
/// Larger numbers are "Bad format".
void read_value(const value_reader& reader, std::uint32_t& value);
/// Accepts both representations, whatever the store can do.
void read_value(const value_reader& reader, std::vector<std::uint32_t>& value);

} // namespace girder::nsm
