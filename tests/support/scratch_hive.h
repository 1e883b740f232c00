#pragma once

#include "base/handles.h"

#include <windows.h>

#include <string>

namespace support {

/// Redirects this process's HKEY_LOCAL_MACHINE to an empty key for the object's life.
class scratch_hive {
public:
    scratch_hive()
    {
        ::RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
        ::RegCreateKeyExW(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key_.put(),
                          nullptr);
        ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, key_.get());
    }
    scratch_hive(const scratch_hive&) = delete;
    scratch_hive& operator=(const scratch_hive&) = delete;
    ~scratch_hive()
    {
        ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        key_.reset();
        ::RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
    }

private:
    /// Other test programs may run at the same time.
    std::wstring path_ = L"Software\\Zelmark scratch hive " + std::to_wstring(::GetCurrentProcessId());

    girder::unique_registry_key key_;
};

} // namespace support
