#pragma once

#include "base/handles.h"
#include "base/win32_error.h"

#include <windows.h>

#include <array>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

// Settings keys as other programs, older versions and accidents may leave them.

namespace support {

enum class stored_as : std::uint8_t { value, subkey, array };

/// One way to store something under a field's name.
struct stored_form {
    stored_as kind = stored_as::value;
    DWORD type = REG_NONE;
    DWORD size = 0;
    bool readable = false; ///< for the field in whose table it stands
};

inline constexpr DWORD huge = 300'000;

inline constexpr stored_form text_forms[] = {
    {.type = REG_SZ, .size = 8, .readable = true},
    {.type = REG_SZ, .size = 0, .readable = true},
    {.type = REG_SZ, .size = huge, .readable = true},
    {.type = REG_SZ, .size = 7},
    {.type = REG_DWORD, .size = 4},
    {.type = REG_BINARY, .size = 8},
    {.type = REG_EXPAND_SZ, .size = 8},
    {.type = REG_MULTI_SZ, .size = 12},
    {.type = 4711, .size = 8},
    {.kind = stored_as::subkey},
    {.kind = stored_as::array},
};

inline constexpr stored_form flag_forms[] = {
    {.type = REG_DWORD, .size = 4, .readable = true},
    {.type = REG_QWORD, .size = 8, .readable = true},
    {.type = REG_DWORD, .size = 3},
    {.type = REG_DWORD, .size = 8},
    {.type = REG_QWORD, .size = 4},
    {.type = REG_DWORD_BIG_ENDIAN, .size = 4},
    {.type = REG_SZ, .size = 4},
    {.type = REG_BINARY, .size = huge},
    {.type = REG_NONE, .size = 0},
    {.kind = stored_as::subkey},
};

inline constexpr stored_form port_forms[] = {
    {.type = REG_BINARY, .size = 4, .readable = true},
    {.type = REG_BINARY, .size = 40, .readable = true},
    {.type = REG_BINARY, .size = 0, .readable = true},
    {.type = REG_BINARY, .size = huge, .readable = true},
    {.kind = stored_as::array, .readable = true},
    {.type = REG_BINARY, .size = 5},
    {.type = REG_BINARY, .size = huge + 1},
    {.type = REG_SZ, .size = 4},
    {.type = REG_DWORD, .size = 4},
    {.type = 0xFFFF'FFFE, .size = 4},
    {.kind = stored_as::subkey},
};

/// A settings key drawn from a number: the same number gives the same key.
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
        draw(L"securityDescriptor", text_forms);
        draw(L"autoDiscovery", flag_forms);
        draw(L"sharedPorts", port_forms);
        draw(L"language", text_forms);
        for (const wchar_t* foreign :
             {L"", L"@", L"language@3", L"sharedPorts@", L"@version", L"\xD800", L"\x65E5 a=b"})
            if (one_in(4))
                put(foreign, text_forms[random_() % std::size(text_forms)]);
        key_.reset();
    }

    /// The fields that cannot be read.
    const std::set<std::u16string>& unreadable() const noexcept { return unreadable_; }

private:
    bool one_in(unsigned chances) { return random_() % chances == 0; }

    static void require(LSTATUS status)
    {
        if (status != ERROR_SUCCESS)
            girder::throw_win32(static_cast<DWORD>(status), "registry");
    }

    template <std::size_t Count>
    void draw(const wchar_t* name, const stored_form (&forms)[Count])
    {
        if (one_in(5))
            return;
        const stored_form& form = forms[random_() % Count];
        if (form.size >= huge && !allow_huge_)
            return;
        put(name, form);
        if (!form.readable)
            unreadable_.emplace(reinterpret_cast<const char16_t*>(name));
    }

    void put(const wchar_t* name, const stored_form& form)
    {
        if (form.kind == stored_as::value) {
            std::vector<BYTE> data(form.size);
            for (BYTE& byte : data)
                byte = static_cast<BYTE>(random_());
            require(::RegSetKeyValueW(key_.get(), nullptr, name, form.type, data.data(), form.size));
            return;
        }
        girder::unique_registry_key subkey;
        // The empty name would be the key itself.
        require(::RegCreateKeyW(key_.get(), *name ? name : L"empty", subkey.put()));
        if (form.kind == stored_as::array)
            for (const auto& [element, number] : {std::pair(L"@count", DWORD{2}), {L"00000", 3}, {L"00001", 1}})
                require(::RegSetKeyValueW(subkey.get(), nullptr, element, REG_DWORD, &number, sizeof number));
    }

    std::minstd_rand random_;
    bool allow_huge_;
    girder::unique_registry_key key_;
    std::set<std::u16string> unreadable_;
};

} // namespace support
