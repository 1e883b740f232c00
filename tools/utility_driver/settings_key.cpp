#include "utility_driver/settings_key.h"

#include "base/handles.h"
#include "base/wide.h"
#include "base/win32_error.h"

#include <array>

namespace utility_driver {
namespace {

constexpr wchar_t maker_path[] = L"Software\\Zelmark";
constexpr wchar_t path[] = L"Software\\Zelmark\\Tidelink Server 7.01";

girder::unique_registry_key open_key()
{
    girder::unique_registry_key key;
    ::RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, key.put());
    return key;
}

} // namespace

stored_value binary(std::initializer_list<std::uint8_t> data)
{
    return {.type = REG_BINARY, .data = data};
}

stored_value number(std::uint32_t value)
{
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&value);
    return {.type = REG_DWORD, .data = {bytes, bytes + sizeof value}};
}

stored_value text(const std::u16string& value)
{
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(value.c_str());
    return {.type = REG_SZ, .data = {bytes, bytes + (value.size() + 1) * sizeof(char16_t)}};
}

stored_value ports(std::initializer_list<std::uint32_t> numbers)
{
    stored_value value{.type = REG_BINARY, .data = {}};
    for (const std::uint32_t port : numbers)
        for (unsigned shift = 0; shift < 32; shift += 8)
            value.data.push_back(static_cast<std::uint8_t>(port >> shift));
    return value;
}

void settings_key::remove()
{
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, maker_path);
}

void settings_key::block()
{
    remove();
    // A lasting key cannot be made below one that ends with the session.
    girder::unique_registry_key parent;
    const LSTATUS status = ::RegCreateKeyExW(HKEY_LOCAL_MACHINE, maker_path, 0, nullptr, REG_OPTION_VOLATILE, KEY_READ,
                                             nullptr, parent.put(), nullptr);
    if (status != ERROR_SUCCESS)
        girder::throw_win32(static_cast<DWORD>(status), "RegCreateKeyExW");
}

void settings_key::write(const std::u16string& name, const stored_value& value)
{
    const LSTATUS status = ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, path, girder::as_wide(name), value.type,
                                             value.data.data(), static_cast<DWORD>(value.data.size()));
    if (status != ERROR_SUCCESS)
        girder::throw_win32(static_cast<DWORD>(status), "RegSetKeyValueW");
}

stored_values settings_key::read()
{
    stored_values values;
    const girder::unique_registry_key key = open_key();
    if (!key)
        return values;
    std::array<wchar_t, 256> name{};
    DWORD largest = 0;
    ::RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &largest,
                       nullptr, nullptr);
    std::vector<std::uint8_t> data(largest);
    for (DWORD index = 0;; ++index) {
        DWORD name_length = name.size();
        DWORD size = largest;
        stored_value value;
        if (::RegEnumValueW(key.get(), index, name.data(), &name_length, nullptr, &value.type, data.data(), &size) !=
            ERROR_SUCCESS)
            break;
        value.data.assign(data.begin(), data.begin() + size);
        values[std::u16string(girder::as_utf16(name.data()), name_length)] = value;
    }
    for (DWORD index = 0;; ++index) {
        DWORD name_length = name.size();
        if (::RegEnumKeyExW(key.get(), index, name.data(), &name_length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS)
            break;
        values[std::u16string(girder::as_utf16(name.data()), name_length) + u'\\'] = {};
    }
    return values;
}

} // namespace utility_driver
