#pragma once

#include "base/handles.h"
#include "registry/error_creating_key.h"
#include "serialisation/visitor.h"

#include <windows.h>

#include <vector>

namespace girder::registry_ex {

/// Writes values to a registry key, arrays and structures to subkeys of it. A value that cannot be written is missing
/// afterwards, silently.
class RegistryValueWriter : public nsm::value_writer {
public:
    struct options {
        HANDLE transaction = nullptr;
        bool delete_on_null = false;
        std::uint32_t capabilities = 0;
    };

    /// \param root  the key to write to; closed with the writer
    RegistryValueWriter(unique_registry_key root, const options& options);

    std::uint32_t capabilities() const noexcept override { return options_.capabilities; }

    /// As REG_SZ, "2025-06-25T14:03:09+0100": local time with its zone. A date that has no such text, one before 1970
    /// or after 3000, is written as a null.
    void write_date(nsm::value_name name, file_time value) override;
    /// As REG_SZ, its terminating null included.
    void write_string(nsm::value_name name, std::u16string_view value) override;
    /// As REG_SZ, in braces.
    void write_guid(nsm::value_name name, const nsm::guid& value) override;
    /// As REG_DWORD where it fits in 32 bits, else as REG_QWORD.
    void write_unsigned(nsm::value_name name, std::uint64_t value) override;
    void write_signed(nsm::value_name name, std::int64_t value) override;
    /// As REG_SZ, the shortest text that reads back as the same value.
    void write_double(nsm::value_name name, double value) override;
    void write_float(nsm::value_name name, float value) override;
    /// As REG_DWORD, 0 or 1.
    void write_boolean(nsm::value_name name, bool value) override;
    /// In an array an empty REG_NONE value; elsewhere deletes the value, if the store was asked to.
    void write_null(nsm::value_name name) override;
    /// A subkey with "@count"; the elements are named by their index, "00000" on.
    /// \throws error_creating_key
    void begin_array(nsm::value_name name, std::uint32_t count) override;
    void end_array() override { frames_.pop_back(); }
    /// A subkey with "@version".
    /// \throws error_creating_key
    void begin_structure(nsm::value_name name, std::uint32_t version) override;
    void end_structure() override { frames_.pop_back(); }
    /// As REG_BINARY.
    void write_binary(nsm::value_name name, std::span<const std::byte> value) override;

private:
    struct frame {
        unique_registry_key key;
        std::uint32_t elements = 0;
        bool is_array = false;
    };

    std::u16string next_name(nsm::value_name name);
    void set(nsm::value_name name, DWORD type, const void* data, std::size_t size);
    void set_text(nsm::value_name name, const std::u16string& text);
    void set_number(nsm::value_name name, std::uint64_t value, bool fits_in_32_bits);
    void push_subkey(nsm::value_name name, bool is_array, const wchar_t* number_name, std::uint32_t number);

    std::vector<frame> frames_; ///< the root key first
    options options_;
};

} // namespace girder::registry_ex
