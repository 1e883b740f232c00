#include "registry/value_writer.h"

#include "base/utf.h"
#include "base/wide.h"
#include "format/format.h"
#include "format/literals.h"
#include "registry/create_key.h"
#include "serialisation/guid_text.h"
#include "serialisation/real_text.h"

#include <limits>
#include <utility>

namespace girder::registry_ex {
using namespace fmtkit::literals;

RegistryValueWriter::RegistryValueWriter(unique_registry_key root, const options& options) : options_(options)
{
    frames_.push_back({.key = std::move(root)});
}

void RegistryValueWriter::write_date(nsm::value_name name, file_time value)
{
    const std::u16string text = fmtkit::format(u"{t(%FT%T%z)}"_fmt, value);
    if (text.empty())
        write_null(name);
    else
        set_text(name, text);
}

void RegistryValueWriter::write_string(nsm::value_name name, std::u16string_view value)
{
    set_text(name, std::u16string(value));
}

void RegistryValueWriter::write_guid(nsm::value_name name, const nsm::guid& value)
{
    set_text(name, nsm::to_text(value));
}

void RegistryValueWriter::write_unsigned(nsm::value_name name, std::uint64_t value)
{
    set_number(name, value, value <= std::numeric_limits<std::uint32_t>::max());
}

void RegistryValueWriter::write_signed(nsm::value_name name, std::int64_t value)
{
    set_number(name, static_cast<std::uint64_t>(value), std::in_range<std::int32_t>(value));
}

void RegistryValueWriter::write_double(nsm::value_name name, double value)
{
    set_text(name, nsm::to_text(value));
}

void RegistryValueWriter::write_float(nsm::value_name name, float value)
{
    set_text(name, nsm::to_text(value));
}

void RegistryValueWriter::write_boolean(nsm::value_name name, bool value)
{
    set_number(name, value ? 1 : 0, true);
}

void RegistryValueWriter::write_null(nsm::value_name name)
{
    if (frames_.back().is_array)
        set(name, REG_NONE, nullptr, 0);
    else if (options_.delete_on_null)
        static_cast<void>(::RegDeleteKeyValueW(frames_.back().key.get(), nullptr, as_wide(next_name(name))));
}

void RegistryValueWriter::begin_array(nsm::value_name name, std::uint32_t count)
{
    push_subkey(name, true, L"@count", count);
}

void RegistryValueWriter::begin_structure(nsm::value_name name, std::uint32_t version)
{
    push_subkey(name, false, L"@version", version);
}

void RegistryValueWriter::write_binary(nsm::value_name name, std::span<const std::byte> value)
{
    set(name, REG_BINARY, value.data(), value.size());
}

std::u16string RegistryValueWriter::next_name(nsm::value_name name)
{
    frame& top = frames_.back();
    const bool has_suffix = name.suffix() != 0;
    if (top.is_array)
        return fmtkit::format(u"{0arf0w5}{2?<}@{1}{2?>}"_fmt, top.elements++, name.suffix(), has_suffix);
    return fmtkit::format(u"{0}{2?<}@{1}{2?>}"_fmt, name.text, name.suffix(), has_suffix);
}

void RegistryValueWriter::set(nsm::value_name name, DWORD type, const void* data, std::size_t size)
{
    static_cast<void>(::RegSetValueExW(frames_.back().key.get(), as_wide(next_name(name)), 0, type,
                                       static_cast<const BYTE*>(data), static_cast<DWORD>(size)));
}

void RegistryValueWriter::set_text(nsm::value_name name, const std::u16string& text)
{
    set(name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(char16_t));
}

void RegistryValueWriter::set_number(nsm::value_name name, std::uint64_t value, bool fits_in_32_bits)
{
    const auto low = static_cast<DWORD>(value);
    if (fits_in_32_bits)
        set(name, REG_DWORD, &low, sizeof low);
    else
        set(name, REG_QWORD, &value, sizeof value);
}

void RegistryValueWriter::push_subkey(nsm::value_name name, bool is_array, const wchar_t* number_name,
                                      std::uint32_t number)
{
    frame pushed{.key = {}, .elements = 0, .is_array = is_array};
    const LSTATUS status =
        create_key(frames_.back().key.get(), next_name(name).c_str(), KEY_WRITE, options_.transaction, pushed.key);
    if (status != ERROR_SUCCESS)
        throw error_creating_key(static_cast<std::uint32_t>(status));
    const DWORD stored = number;
    static_cast<void>(::RegSetValueExW(pushed.key.get(), number_name, 0, REG_DWORD,
                                       reinterpret_cast<const BYTE*>(&stored), sizeof stored));
    frames_.push_back(std::move(pushed));
}

} // namespace girder::registry_ex
