#pragma once

#include "base/file_time.h"
#include "serialisation/visitor.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace girder::registry_ex {

/// The registry's numbers for the types that this layer writes: REG_NONE, REG_SZ, REG_BINARY, REG_DWORD, REG_QWORD.
namespace value_type {
inline constexpr std::uint32_t none = 0;
inline constexpr std::uint32_t text = 1;
inline constexpr std::uint32_t binary = 3;
inline constexpr std::uint32_t dword = 4;
inline constexpr std::uint32_t qword = 11;
} // namespace value_type

/// What a registry value can be read as, decided from its type and bytes alone. The type decides the kind: REG_SZ is a
/// text; REG_DWORD and REG_QWORD are a number and a truth value; REG_BINARY is bytes; empty REG_NONE is null. Each
/// conversion throws nsm::details::load_exception: "... expected" for another kind, "Bad format" for a wrong size, any
/// other type, or a text that does not parse.
struct stored_value {
    std::uint32_t type = 0;
    std::vector<std::byte> data;

    /// Throws for a value that is not of the wanted kind.
    [[noreturn]] void refuse_kind(const char* expected) const;

    bool is_null() const noexcept;
    bool is_binary() const noexcept;

    file_time as_date() const;
    std::u16string as_string() const;
    nsm::guid as_guid() const;
    std::uint64_t as_unsigned() const;
    /// A REG_DWORD is sign-extended.
    std::int64_t as_signed() const;
    double as_double() const;
    float as_float() const;
    bool as_boolean() const;
    std::vector<std::byte> as_binary() const;
};

} // namespace girder::registry_ex
