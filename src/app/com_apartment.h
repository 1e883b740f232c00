#pragma once

#include <windows.h>

#include <objbase.h>

namespace tidelink {

/// COM on the thread for the object's life. A failure to initialise it is ignored; it is then not uninitialised.
class com_apartment {
public:
    com_apartment() noexcept : initialised_(SUCCEEDED(::CoInitialize(nullptr))) {}
    com_apartment(const com_apartment&) = delete;
    com_apartment& operator=(const com_apartment&) = delete;
    ~com_apartment()
    {
        if (initialised_)
            ::CoUninitialize();
    }

private:
    bool initialised_;
};

} // namespace tidelink
