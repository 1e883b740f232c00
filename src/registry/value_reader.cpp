#include "registry/value_reader.h"

#include "base/utf.h"
#include "base/wide.h"
#include "registry/single_value_reader.h"
#include "serialisation/field_values.h"
#include "serialisation/load_exception.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace girder::registry_ex {
namespace {

using nsm::details::load_exception;

[[noreturn]] void refuse(const char* text)
{
    throw load_exception(text);
}

struct name_lengths {
    DWORD subkey = 0;
    DWORD value = 0;
};

name_lengths longest_names(HKEY key)
{
    name_lengths longest;
    if (::RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, &longest.subkey, nullptr, nullptr, &longest.value,
                           nullptr, nullptr, nullptr) != ERROR_SUCCESS)
        refuse(nsm::details::bad_format);
    return longest;
}

/// What RegEnumValueW or RegEnumKeyExW delivers.
template <typename Enumerate>
std::vector<std::u16string> enumerate_names(DWORD longest, Enumerate enumerate)
{
    std::vector<std::u16string> names;
    std::u16string buffer(longest + std::size_t{1}, u'\0');
    for (DWORD index = 0;; ++index) {
        auto length = static_cast<DWORD>(buffer.size());
        const LSTATUS status = enumerate(index, as_wide(buffer.data()), &length);
        if (status == ERROR_MORE_DATA) {
            // The key has changed since it was asked.
            buffer.resize(buffer.size() * 2);
            --index;
            continue;
        }
        if (status == ERROR_NO_MORE_ITEMS)
            return names;
        if (status != ERROR_SUCCESS)
            refuse(nsm::details::bad_format);
        names.emplace_back(buffer, 0, length);
    }
}

std::vector<std::u16string> value_names(HKEY key)
{
    return enumerate_names(longest_names(key).value, [key](DWORD index, wchar_t* name, DWORD* length) {
        return ::RegEnumValueW(key, index, name, length, nullptr, nullptr, nullptr, nullptr);
    });
}

std::vector<std::u16string> subkey_names(HKEY key)
{
    return enumerate_names(longest_names(key).subkey, [key](DWORD index, wchar_t* name, DWORD* length) {
        return ::RegEnumKeyExW(key, index, name, length, nullptr, nullptr, nullptr, nullptr);
    });
}

/// Empty when the query fails.
std::optional<stored_value> query(HKEY key, const std::u16string& name)
{
    stored_value value;
    DWORD type = REG_NONE;
    DWORD size = 0;
    LSTATUS status = ::RegQueryValueExW(key, as_wide(name), nullptr, &type, nullptr, &size);
    while (status == ERROR_SUCCESS || status == ERROR_MORE_DATA) {
        value.data.resize(size);
        status =
            ::RegQueryValueExW(key, as_wide(name), nullptr, &type, reinterpret_cast<BYTE*>(value.data.data()), &size);
        if (status == ERROR_SUCCESS && size <= value.data.size()) {
            value.data.resize(size);
            value.type = type;
            return value;
        }
    }
    return std::nullopt;
}

/// Stands for what is listed and cannot be read: every conversion of it is "Bad format".
stored_value unreadable_value()
{
    constexpr std::uint32_t no_type = 0xFFFFFFFF;
    return {.type = no_type, .data = {}};
}

/// "@count" or "@version"; empty when the key has none.
std::optional<std::uint32_t> own_number(HKEY key, const char16_t* name)
{
    std::optional<stored_value> stored = query(key, name);
    if (!stored)
        return std::nullopt;
    std::uint32_t number = 0;
    nsm::read_value(single_value_reader(std::move(*stored), 0), number);
    return number;
}

/// Calls `visit` with the value of that name.
void visit_value(HKEY key, const std::u16string& name, std::uint32_t capabilities,
                 const nsm::value_reader::element_visitor& visit)
{
    visit(single_value_reader(query(key, name).value_or(unreadable_value()), capabilities));
}

/// Calls `visit` with the subkey of that name.
void visit_subkey(HKEY key, const std::u16string& name, std::uint32_t capabilities,
                  const nsm::value_reader::element_visitor& visit)
{
    unique_registry_key subkey;
    if (::RegOpenKeyExW(key, as_wide(name), 0, KEY_READ, subkey.put()) == ERROR_SUCCESS)
        visit(RegistryValueReader(std::move(subkey), capabilities));
    else
        visit(single_value_reader(unreadable_value(), capabilities));
}

/// A name as it is stored, taken apart.
struct split_name {
    std::string text; ///< UTF-8
    std::uint32_t suffix = 0;
};

std::optional<std::uint32_t> decimal(std::u16string_view text, std::size_t longest)
{
    if (text.empty() || text.size() > longest)
        return std::nullopt;
    std::uint32_t number = 0;
    for (const char16_t digit : text) {
        if (digit < u'0' || digit > u'9')
            return std::nullopt;
        number = number * 10 + (digit - u'0');
    }
    return number;
}

split_name split(std::u16string_view stored)
{
    constexpr std::uint32_t highest_suffix = 15;
    const std::size_t at = stored.rfind(u'@');
    if (at != std::u16string_view::npos && at > 0) {
        const auto suffix = decimal(stored.substr(at + 1), 2);
        if (suffix && *suffix > 0 && *suffix <= highest_suffix)
            return {.text = to_utf8(stored.substr(0, at)), .suffix = *suffix};
    }
    return {.text = to_utf8(stored)};
}

bool is_own_number(const std::u16string& name)
{
    return name == u"@count" || name == u"@version";
}

/// A value or a subkey under an index.
struct element {
    std::uint32_t index;
    std::u16string name;
    bool is_subkey;
};

void add_elements(std::vector<element>& elements, const std::vector<std::u16string>& names, bool are_subkeys,
                  std::uint32_t count)
{
    constexpr std::size_t longest_index = 9;
    for (const std::u16string& name : names) {
        const std::u16string_view digits = std::u16string_view(name).substr(0, name.find(u'@'));
        const auto index = decimal(digits, longest_index);
        if (index && *index < count)
            elements.push_back({.index = *index, .name = name, .is_subkey = are_subkeys});
    }
}

/// By index, without gaps or doubles. Elements behind the count are left from a longer array of the same name.
std::vector<element> elements_of(HKEY key, std::uint32_t count)
{
    std::vector<element> elements;
    add_elements(elements, value_names(key), false, count);
    add_elements(elements, subkey_names(key), true, count);
    std::ranges::sort(elements, {}, &element::index);
    bool complete = elements.size() == count;
    for (std::size_t i = 0; i < elements.size(); ++i)
        complete = complete && elements[i].index == i;
    if (!complete)
        refuse(nsm::details::bad_format);
    return elements;
}

} // namespace

RegistryValueReader::RegistryValueReader(unique_registry_key key, std::uint32_t capabilities) noexcept
    : key_(std::move(key)), capabilities_(capabilities)
{}

void RegistryValueReader::visit_members(const member_visitor& visit) const
{
    const auto as_member = [&visit](const std::u16string& stored) {
        return [&visit, name = split(stored)](const nsm::value_reader& value) {
            visit({name.text, nsm::value_name::type_code_of_suffix(name.suffix)}, value);
        };
    };
    const std::vector<std::u16string> values = value_names(key_.get());
    for (const std::u16string& name : values)
        if (!is_own_number(name))
            visit_value(key_.get(), name, capabilities_, as_member(name));
    for (const std::u16string& name : subkey_names(key_.get()))
        if (std::ranges::find(values, name) == values.end())
            visit_subkey(key_.get(), name, capabilities_, as_member(name));
}

std::uint32_t RegistryValueReader::structure_version() const
{
    return own_number(key_.get(), u"@version").value_or(0);
}

void RegistryValueReader::visit_elements(const element_visitor& visit) const
{
    const std::optional<std::uint32_t> count = own_number(key_.get(), u"@count");
    if (!count)
        refuse(nsm::details::array_expected);
    for (const element& each : elements_of(key_.get(), *count)) {
        if (each.is_subkey)
            visit_subkey(key_.get(), each.name, capabilities_, visit);
        else
            visit_value(key_.get(), each.name, capabilities_, visit);
    }
}

} // namespace girder::registry_ex
