#pragma once

#include "base/file_time.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The exchange of named, typed values between a structure and a store, whatever the store is. A structure writes itself
// to a value_writer and reads itself from a value_reader; each kind of store implements the two.

namespace girder::nsm {

/// A GUID in the order of its text: data1-data2-data3-data4.
struct guid {
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::array<std::uint8_t, 8> data4{};

    bool operator==(const guid&) const = default;
};

/// What a store can do, as a set of bits.
enum capability : std::uint32_t {
    /// An array of numbers may be written as one binary value.
    scalar_arrays_as_binary = 0x02,
    /// A reader most likely delivers an object's members in the order of their names, otherwise as they were written.
    members_in_name_order = 0x10,
};

/// The name of a value: ASCII or UTF-8, compared as bytes. Unnamed in an array, where the index counts.
struct value_name {
    constexpr value_name() noexcept = default;
    // NOLINTBEGIN(google-explicit-constructor): a plain name is the usual case
    constexpr value_name(std::string_view plain) noexcept : text(plain) {}
    constexpr value_name(const char* plain) noexcept : text(plain) {}
    // NOLINTEND(google-explicit-constructor)
    constexpr value_name(std::string_view name, std::uint32_t code) noexcept : text(name), type_code(code) {}

    std::string_view text;
    std::uint32_t type_code = 0;

    /// Bits 9 to 12 of the type code: a number that stores append to the name as "@" and the number; 0 for none.
    constexpr std::uint32_t suffix() const noexcept { return (type_code >> 9) & 0xF; }
    static constexpr std::uint32_t type_code_of_suffix(std::uint32_t suffix) noexcept { return suffix << 9; }
};

/// Takes the values of a structure. Begun arrays and structures are ended in reverse order.
class value_writer {
public:
    value_writer() = default;
    value_writer(const value_writer&) = delete;
    value_writer& operator=(const value_writer&) = delete;
    virtual ~value_writer() = default;

    /// Bits of `capability`.
    virtual std::uint32_t capabilities() const noexcept = 0;

    virtual void write_date(value_name name, file_time value) = 0;
    virtual void write_string(value_name name, std::u16string_view value) = 0;
    virtual void write_guid(value_name name, const guid& value) = 0;
    virtual void write_unsigned(value_name name, std::uint64_t value) = 0;
    virtual void write_signed(value_name name, std::int64_t value) = 0;
    virtual void write_double(value_name name, double value) = 0;
    virtual void write_float(value_name name, float value) = 0;
    virtual void write_boolean(value_name name, bool value) = 0;
    virtual void write_null(value_name name) = 0;
    virtual void begin_array(value_name name, std::uint32_t count) = 0;
    virtual void end_array() = 0;
    virtual void begin_structure(value_name name, std::uint32_t version) = 0;
    virtual void end_structure() = 0;
    virtual void write_binary(value_name name, std::span<const std::byte> value) = 0;
};

/// One stored value, asked for as the kind that its reader wants. Every function throws details::load_exception: the
/// "... expected" text of the wanted kind when the value is of another kind, "Bad format" when it is broken.
class value_reader {
public:
    using member_visitor = std::function<void(value_name name, const value_reader& value)>;
    using named_visitor = std::function<void(std::size_t index, const value_reader& value)>;
    using element_visitor = std::function<void(const value_reader& value)>;

    value_reader() = default;
    value_reader(const value_reader&) = delete;
    value_reader& operator=(const value_reader&) = delete;
    virtual ~value_reader() = default;

    /// Bits of `capability`.
    virtual std::uint32_t capabilities() const noexcept = 0;

    virtual bool is_null() const = 0;
    /// Whether as_binary() is the way to read it.
    virtual bool is_binary() const = 0;

    virtual file_time as_date() const = 0;
    virtual std::u16string as_string() const = 0;
    virtual guid as_guid() const = 0;
    virtual std::uint64_t as_unsigned() const = 0;
    virtual std::int64_t as_signed() const = 0;
    virtual double as_double() const = 0;
    virtual float as_float() const = 0;
    virtual bool as_boolean() const = 0;
    virtual std::vector<std::byte> as_binary() const = 0;

    /// Visits the members of a structure, in an order of the store's choice. The views and the value live for the call.
    virtual void visit_members(const member_visitor& visit) const = 0;
    /// Visits those members of a structure that have one of the `names`, with its index there; names with a suffix are
    /// none of them. There are no quotes and backslashes in `names`. A store may find a member faster when it comes
    /// behind its forerunner in `names`.
    virtual void visit_named(std::span<const std::string_view> names, const named_visitor& visit) const;
    /// The version that a structure was written with; 0 when none is stored.
    virtual std::uint32_t structure_version() const = 0;
    /// Visits the elements of an array by index.
    virtual void visit_elements(const element_visitor& visit) const = 0;
};

} // namespace girder::nsm
