#include "base/utf.h"
#include "base/wide.h"
#include "format/local_time.h"

#include <windows.h>

#include <ctime>

namespace fmtkit::details {
namespace {

/// The last second of the year 3000, the end of _localtime64_s.
constexpr std::int64_t last_second = 32'535'215'999;

SYSTEMTIME system_time(const std::tm& fields)
{
    SYSTEMTIME time{};
    time.wYear = static_cast<WORD>(fields.tm_year + 1900);
    time.wMonth = static_cast<WORD>(fields.tm_mon + 1);
    time.wDay = static_cast<WORD>(fields.tm_mday);
    time.wDayOfWeek = static_cast<WORD>(fields.tm_wday);
    time.wHour = static_cast<WORD>(fields.tm_hour);
    time.wMinute = static_cast<WORD>(fields.tm_min);
    time.wSecond = static_cast<WORD>(fields.tm_sec);
    return time;
}

/// \param picture  null for the user's own form
std::u16string date_text(const std::tm& fields, DWORD flags, const wchar_t* picture)
{
    const SYSTEMTIME time = system_time(fields);
    wchar_t buffer[128];
    const int length = ::GetDateFormatEx(LOCALE_NAME_USER_DEFAULT, flags, &time, picture, buffer, 128, nullptr);
    return length > 0 ? std::u16string(girder::as_utf16(buffer), static_cast<std::size_t>(length) - 1)
                      : std::u16string();
}

std::u16string time_text(const std::tm& fields, const wchar_t* picture)
{
    const SYSTEMTIME time = system_time(fields);
    wchar_t buffer[128];
    const int length = ::GetTimeFormatEx(LOCALE_NAME_USER_DEFAULT, 0, &time, picture, buffer, 128);
    return length > 0 ? std::u16string(girder::as_utf16(buffer), static_cast<std::size_t>(length) - 1)
                      : std::u16string();
}

} // namespace

std::optional<local_time> to_local_time(std::int64_t seconds)
{
    if (seconds < 0 || seconds > last_second)
        return std::nullopt;
    local_time local;
    if (_localtime64_s(&local.fields, &seconds) != 0)
        return std::nullopt;
    // Reading the local time as if it were UTC gives the distance; the call normalises its argument.
    std::tm read_as_utc = local.fields;
    local.offset_minutes = static_cast<int>((_mkgmtime64(&read_as_utc) - seconds) / 60);
    wchar_t name[64]{};
    const std::size_t length = wcsftime(name, std::size(name), L"%Z", &local.fields);
    local.zone_name = girder::to_utf8({girder::as_utf16(name), length});
    return local;
}

std::u16string locale_time_text(char16_t conversion, const std::tm& fields)
{
    switch (conversion) {
    case u'a':
        return date_text(fields, 0, L"ddd");
    case u'A':
        return date_text(fields, 0, L"dddd");
    case u'b':
        return date_text(fields, 0, L"MMM");
    case u'B':
        return date_text(fields, 0, L"MMMM");
    case u'p':
        return time_text(fields, L"tt");
    case u'r':
    case u'X':
        return time_text(fields, nullptr);
    case u'x':
        return date_text(fields, DATE_SHORTDATE, nullptr);
    default:
        return date_text(fields, DATE_SHORTDATE, nullptr) + u' ' + time_text(fields, nullptr);
    }
}

const std::u16string& thousands_separator()
{
    static const std::u16string separator = [] {
        wchar_t text[8]{};
        const int length = ::GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_STHOUSAND, text, 8);
        return length > 0 ? std::u16string(girder::as_utf16(text), static_cast<std::size_t>(length) - 1)
                          : std::u16string();
    }();
    return separator;
}

} // namespace fmtkit::details
