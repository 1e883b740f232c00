#pragma once

#include "serialisation/absent_value.h"
#include "serialisation/field_matcher.h"
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

template <typename Table, typename Record>
void assign_defaults(const Table& table, Record& record)
{
    for_each_field(table, [&record](const auto& row) { record.*row.member = row.default_value; });
}

template <typename Table, typename Record>
void write_all(const Table& table, const Record& record, value_writer& writer)
{
    for_each_field(table, [&](const auto& row) { write_value(writer, row.name, record.*row.member); });
}

/// Writes the fields that differ from `defaults`.
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

/// Fills the record with the members of an object. Fields that the object lacks keep their values; unknown members are
/// ignored.
/// \param on_failure  takes the error of a single field, which then keeps its value, and the others are read all the
///                    same. Empty: the first error is thrown, and the fields read before keep what was read
/// \throws details::load_exception
template <typename Table, typename Record>
void read_record(const Table& table, const value_reader& object, Record& record, const field_failure& on_failure = {})
{
    const bool name_order = (object.capabilities() & members_in_name_order) != 0;
    field_matcher matcher(table.names, name_order ? field_matcher::expected_order::name
                                                  : field_matcher::expected_order::declaration);
    object.visit_members([&](value_name name, const value_reader& value) {
        const std::optional<std::size_t> matched = matcher.match(name.text);
        if (!matched || name.suffix() != 0)
            return;
        try {
            std::size_t index = 0;
            for_each_field(table, [&](const auto& row) {
                if (index++ == *matched)
                    read_value(value, record.*row.member);
            });
        } catch (const details::load_exception& error) {
            if (!on_failure)
                throw;
            on_failure(name.text, error);
        }
    });
}

namespace details {

/// What read_complete_record() knows while the members come in.
template <typename Table, typename Record>
class complete_reading {
public:
    static constexpr std::size_t field_count = std::tuple_size_v<decltype(Table::fields)>;

    complete_reading(const Table& table, Record& record) noexcept : table_(table), record_(record) {}

    void take(const value_name& name, const value_reader& value)
    {
        const std::size_t index = index_of(name);
        if (index == field_count || seen_[index])
            return;
        seen_[index] = true;
        expected_ = index + 1;
        read_field(index, value);
    }

    void read_missing()
    {
        for (std::size_t index = 0; index < field_count; ++index)
            if (!seen_[index])
                read_field(index, absent_value());
    }

private:
    /// The next field in declaration order is tried first; field_count when there is none of that name.
    std::size_t index_of(const value_name& name) const noexcept
    {
        if (expected_ < field_count && table_.names[expected_] == name.text)
            return name.suffix() == 0 ? expected_ : field_count;
        for (std::size_t index = 0; index < field_count; ++index)
            if (begin_alike(table_.names[index], name.text) && table_.names[index] == name.text)
                return name.suffix() == 0 ? index : field_count;
        return field_count;
    }

    /// Most other names differ in their first characters, which costs no call.
    static bool begin_alike(std::string_view one, std::string_view other) noexcept
    {
        return one.size() == other.size() && !one.empty() && one.front() == other.front();
    }

    void read_field(std::size_t wanted, const value_reader& value)
    {
        std::size_t index = 0;
        for_each_field(table_, [&](const auto& row) {
            if (index++ == wanted)
                read_value(value, record_.*row.member);
        });
    }

    const Table& table_;
    Record& record_;
    std::array<bool, field_count> seen_{};
    std::size_t expected_ = 0;
};

} // namespace details

/// Fills the record with the members of an object that is written as a whole: a field that the object lacks is read
/// from a null, which a std::optional accepts and any other kind of field refuses. Of members with the same name the
/// first counts; unknown members are ignored.
/// \throws details::load_exception; the fields read before keep what was read
template <typename Table, typename Record>
void read_complete_record(const Table& table, const value_reader& object, Record& record)
{
    details::complete_reading reading(table, record);
    object.visit_members([&reading](value_name name, const value_reader& value) { reading.take(name, value); });
    reading.read_missing();
}

} // namespace girder::nsm
