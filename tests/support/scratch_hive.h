#pragma once

#include "base/handles.h"

#include <windows.h>

namespace support {

/// Redirects this process's HKEY_LOCAL_MACHINE to an empty key for the object's life.
class scratch_hive {
public:
    scratch_hive()
    {
        ::RegDeleteTreeW(HKEY_CURRENT_USER, path);
        ::RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key_.put(), nullptr);
        ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, key_.get());
    }
    scratch_hive(const scratch_hive&) = delete;
    scratch_hive& operator=(const scratch_hive&) = delete;
    ~scratch_hive()
    {
        ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        key_.reset();
        ::RegDeleteTreeW(HKEY_CURRENT_USER, path);
    }

private:
    static constexpr const wchar_t* path = L"Software\\Zelmark scratch hive";

    girder::unique_registry_key key_;
};

} // namespace support
