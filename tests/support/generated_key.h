#pragma once

#include "base/handles.h"
#include "base/win32_error.h"

#include <windows.h>

#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace support {

/// A settings key as another program, an older version or an accident may leave it, drawn from a number: the same
/// number gives the same key.
class generated_key {
public:
    /// \param allow_huge  whether values of 300 KB may occur
    generated_key(unsigned seed, bool allow_huge) : random_(seed), allow_huge_(allow_huge) {}

    /// Writes the key anew, below HKEY_LOCAL_MACHINE.
    /// \throws girder::system_error
    void store(const std::wstring& path)
    {
        ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, path.c_str());
        require(::RegCreateKeyW(HKEY_LOCAL_MACHINE, path.c_str(), key_.put()));
        const auto is_text = [](DWORD type, DWORD size) { return type == REG_SZ && size % 2 == 0; };
        draw(L"securityDescriptor", REG_SZ, 8, is_text);
        draw(L"autoDiscovery", REG_DWORD, 4, [](DWORD type, DWORD size) {
            return (type == REG_DWORD && size == 4) || (type == REG_QWORD && size == 8);
        });
        draw(L"sharedPorts", REG_BINARY, 40,
             [](DWORD type, DWORD size) { return type == array || (type == REG_BINARY && size % 4 == 0); });
        draw(L"language", REG_SZ, 8, is_text);
        for (const wchar_t* foreign :
             {L"", L"@", L"language@3", L"sharedPorts@", L"@version", L"\xD800", L"\x65E5 a=b"})
            if (one_in(4))
                put(foreign, any_type(), any_size());
        key_.reset();
    }

    /// The fields that cannot be read.
    const std::set<std::u16string>& unreadable() const noexcept { return unreadable_; }

private:
    // Stored as keys of their own, beside the types of values.
    static constexpr DWORD structure = 0x10000;
    static constexpr DWORD array = 0x10001;

    bool one_in(unsigned chances) { return random_() % chances == 0; }
    DWORD any_type()
    {
        constexpr DWORD types[] = {REG_NONE,     REG_SZ,    REG_EXPAND_SZ, REG_BINARY,  REG_DWORD, REG_DWORD_BIG_ENDIAN,
                                   REG_MULTI_SZ, REG_QWORD, 4711,          0xFFFF'FFFE, structure, array};
        return types[random_() % std::size(types)];
    }
    DWORD any_size()
    {
        constexpr DWORD sizes[] = {0, 3, 4, 5, 7, 8, 300'000, 300'001};
        return sizes[random_() % (std::size(sizes) - (allow_huge_ ? 0 : 2))];
    }

    static void require(LSTATUS status)
    {
        if (status != ERROR_SUCCESS)
            girder::throw_win32(static_cast<DWORD>(status), "registry");
    }

    /// Every second time as the program writes it.
    void draw(const wchar_t* name, DWORD type, DWORD size, bool (*is_readable)(DWORD type, DWORD size))
    {
        if (one_in(5))
            return;
        if (one_in(2)) {
            type = any_type();
            size = any_size();
        }
        put(name, type, size);
        if (!is_readable(type, size))
            unreadable_.emplace(reinterpret_cast<const char16_t*>(name));
    }

    void put(const wchar_t* name, DWORD type, DWORD size)
    {
        if (type < structure || type > array) {
            std::vector<BYTE> data(size);
            for (BYTE& byte : data)
                byte = static_cast<BYTE>(random_());
            require(::RegSetKeyValueW(key_.get(), nullptr, name, type, data.data(), size));
            return;
        }
        girder::unique_registry_key subkey;
        // The empty name would be the key itself.
        require(::RegCreateKeyW(key_.get(), *name ? name : L"empty", subkey.put()));
        if (type == array)
            for (const auto& [element, number] : {std::pair(L"@count", DWORD{2}), {L"00000", 3}, {L"00001", 1}})
                require(::RegSetKeyValueW(subkey.get(), nullptr, element, REG_DWORD, &number, sizeof number));
    }

    std::minstd_rand random_;
    bool allow_huge_;
    girder::unique_registry_key key_;
    std::set<std::u16string> unreadable_;
};

} // namespace support
