#pragma once

#include "base/handles.h"

#include <type_traits>

namespace girder {

/// A DLL of the system's own folder, loaded while the object lives. No other folder is searched, so a file of the same
/// name beside the program is never taken.
class system_library {
public:
    /// \param name  file name without a folder, e.g. u"version.dll"
    /// \throws system_error
    explicit system_library(const char16_t* name);

    /// An exported function: `library.function<decltype(::VerQueryValueW)>("VerQueryValueW")`.
    /// \throws system_error when the library does not export it
    template <typename Function>
    Function* function(const char* name) const
    {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(find(name)));
    }

    /// The same, null when the library of this system version does not export it.
    template <typename Function>
    Function* optional_function(const char* name) const noexcept
    {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(::GetProcAddress(module_.get(), name)));
    }

private:
    FARPROC find(const char* name) const;

    unique_library module_;
};

} // namespace girder
