#pragma once

#include "serialisation/absent_value.h"
#include "serialisation/field_values.h"
#include "serialisation/load_exception.h"
#include "serialisation/visitor.h"

#include <array>
#include <cstddef>
#include <functional>
#include <string_view>
#include <tuple>
#include <utility>

// A record is a structure whose fields are declared once, in a table of rows that everything below walks.

namespace girder::nsm {

struct no_default {};

/// One row: the serialised name, the member, and the value that a record starts with, where it has one.
template <typename Record, typename Value, typename Default = no_default>
struct field {
    std::string_view name;
    Value Record::* member;
    Default default_value = {};
};

/// The rows of a record, in declaration order.
template <typename... Fields>
struct field_table {
    constexpr explicit field_table(Fields... rows) noexcept : fields(rows...), names{rows.name...} {}

    std::tuple<Fields...> fields;
    std::array<std::string_view, sizeof...(Fields)> names;
};

/// Calls `visit` with every row, in declaration order.
template <typename Table, typename Visit>
constexpr void for_each_field(const Table& table, Visit&& visit)
{
    std::apply([&visit](const auto&... row) { (visit(row), ...); }, table.fields);
}

/// Gives every field the value of its row.
template <typename Table, typename Record>
void assign_defaults(const Table& table, Record& record)
{
    for_each_field(table, [&record](const auto& row) { record.*row.member = row.default_value; });
}

/// Writes every field, in declaration order.
template <typename Table, typename Record>
void write_all(const Table& table, const Record& record, value_writer& writer)
{
    for_each_field(table, [&](const auto& row) { write_value(writer, row.name, record.*row.member); });
}

/// Writes the fields that differ from those of `defaults`, in declaration order.
template <typename Table, typename Record>
void write_changed(const Table& table, const Record& record, const Record& defaults, value_writer& writer)
{
    for_each_field(table, [&](const auto& row) {
        if (record.*row.member != defaults.*row.member)
            write_value(writer, row.name, record.*row.member);
    });
}

/// Called for a field that cannot be read.
using field_failure = std::function<void(std::string_view name, const details::load_exception& error)>;

namespace details {

template <typename Table, typename Record>
void read_field(const Table& table, std::size_t wanted, const value_reader& value, Record& record)
{
    const auto read = [&](const auto& row) {
        read_value(value, record.*row.member);
        return true;
    };
    std::size_t index = 0;
    std::apply([&](const auto&... row) { return ((index++ == wanted && read(row)) || ...); }, table.fields);
}

/// Calls read(index, value) for the fields that an object has, of members with the same name for the first.
/// \return which fields those are
template <typename Table, typename Read>
auto read_present(const Table& table, const value_reader& object, const Read& read)
{
    std::array<bool, std::tuple_size_v<decltype(Table::fields)>> seen{};
    const auto take = [&](std::size_t index, const value_reader& value) {
        if (!std::exchange(seen[index], true))
            read(index, value);
    };
    object.visit_named(table.names, std::ref(take)); // a copy would be made on the heap for every object
    return seen;
}

} // namespace details

/// Fills the record with the members of an object. Fields that the object lacks keep their values; of members with the
/// same name the first counts; unknown members are ignored.
/// \param on_failure  takes the error of a single field, which then keeps its value, and the others are read all the
///                    same. Empty: the first error is thrown, and the fields read before keep what was read
/// \throws details::load_exception
template <typename Table, typename Record>
void read_record(const Table& table, const value_reader& object, Record& record, const field_failure& on_failure = {})
{
    details::read_present(table, object, [&](std::size_t index, const value_reader& value) {
        try {
            details::read_field(table, index, value, record);
        } catch (const details::load_exception& error) {
            if (!on_failure)
                throw;
            on_failure(table.names[index], error);
        }
    });
}

/// The same for an object that is written as a whole: a field that the object lacks is read from a null, which a
/// std::optional accepts and any other kind of field refuses.
/// \throws details::load_exception; the fields read before keep what was read
template <typename Table, typename Record>
void read_complete_record(const Table& table, const value_reader& object, Record& record)
{
    const auto seen = details::read_present(table, object, [&](std::size_t index, const value_reader& value) {
        details::read_field(table, index, value, record);
    });
    for (std::size_t index = 0; index < seen.size(); ++index)
        if (!seen[index])
            details::read_field(table, index, absent_value(), record);
}

} // namespace girder::nsm
