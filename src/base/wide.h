#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace girder {

// The program's text is char16_t, the Windows interfaces take wchar_t: the same 16 bits here. These re-type without
// copying, at the call.
static_assert(sizeof(wchar_t) == sizeof(char16_t));

inline const wchar_t* as_wide(const char16_t* text) noexcept
{
    return reinterpret_cast<const wchar_t*>(text);
}
inline wchar_t* as_wide(char16_t* text) noexcept
{
    return reinterpret_cast<wchar_t*>(text);
}
inline const wchar_t* as_wide(const std::u16string& text) noexcept
{
    return as_wide(text.c_str());
}

inline const char16_t* as_utf16(const wchar_t* text) noexcept
{
    return reinterpret_cast<const char16_t*>(text);
}
inline char16_t* as_utf16(wchar_t* text) noexcept
{
    return reinterpret_cast<char16_t*>(text);
}
inline std::u16string_view as_utf16(std::wstring_view text) noexcept
{
    return {as_utf16(text.data()), text.size()};
}

} // namespace girder
