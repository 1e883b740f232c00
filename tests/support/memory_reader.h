#pragma once

#include "serialisation/load_exception.h"
#include "serialisation/visitor.h"

#include <string>
#include <variant>
#include <vector>

namespace support {

struct memory_member;

/// A plain value for what no store is needed for.
struct memory_value {
    using members = std::vector<memory_member>;
    using elements = std::vector<memory_value>;

    std::variant<std::u16string, bool, std::uint64_t, std::vector<std::byte>, members, elements> content;
};

struct memory_member {
    std::string name;
    memory_value value;
};

/// Such a value as a source. The value outlives it.
class memory_reader : public girder::nsm::value_reader {
public:
    explicit memory_reader(const memory_value& value, std::uint32_t capabilities = 0)
        : value_(value), capabilities_(capabilities)
    {}

    std::uint32_t capabilities() const noexcept override { return capabilities_; }
    bool is_null() const override { return false; }
    bool is_binary() const override { return std::holds_alternative<std::vector<std::byte>>(value_.content); }
    girder::file_time as_date() const override { refuse(girder::nsm::details::date_expected); }
    std::u16string as_string() const override { return get<std::u16string>(girder::nsm::details::string_expected); }
    girder::nsm::guid as_guid() const override { refuse(girder::nsm::details::string_expected); }
    std::uint64_t as_unsigned() const override { return get<std::uint64_t>(girder::nsm::details::number_expected); }
    std::int64_t as_signed() const override { return static_cast<std::int64_t>(as_unsigned()); }
    double as_double() const override { return static_cast<double>(as_unsigned()); }
    float as_float() const override { return static_cast<float>(as_unsigned()); }
    bool as_boolean() const override { return get<bool>(girder::nsm::details::boolean_expected); }
    std::vector<std::byte> as_binary() const override
    {
        return get<std::vector<std::byte>>(girder::nsm::details::array_expected);
    }
    void visit_members(const member_visitor& visit) const override
    {
        for (const memory_member& member : get<memory_value::members>(girder::nsm::details::object_expected))
            visit(std::string_view(member.name), memory_reader(member.value));
    }
    std::uint32_t structure_version() const override { return 0; }
    void visit_elements(const element_visitor& visit) const override
    {
        for (const memory_value& element : get<memory_value::elements>(girder::nsm::details::array_expected))
            visit(memory_reader(element));
    }

private:
    [[noreturn]] static void refuse(const char* text) { throw girder::nsm::details::load_exception(text); }

    template <typename Value>
    const Value& get(const char* expected) const
    {
        if (const Value* const value = std::get_if<Value>(&value_.content))
            return *value;
        refuse(expected);
    }

    const memory_value& value_;
    std::uint32_t capabilities_;
};

} // namespace support
