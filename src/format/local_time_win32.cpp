#include "base/wide.h"
#include "format/local_time.h"

#include <windows.h>

#include <algorithm>
#include <ctime>
#include <cwchar>

namespace fmtkit::details {
namespace {

using text_buffer = std::span<char16_t, longest_system_text>;

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

/// The functions of the system count the null behind the text.
std::size_t size_of_text(int returned)
{
    return returned > 0 ? static_cast<std::size_t>(returned) - 1 : 0;
}

/// What is known of the user's locale. A picture is a form of dates or times such as "dd.MM.yyyy".
struct locale_texts {
    wchar_t name[LOCALE_NAME_MAX_LENGTH]{};
    // As long as LOCALE_SSHORTDATE, LOCALE_STIMEFORMAT and LOCALE_STHOUSAND can be, with the null.
    wchar_t short_date[80]{};
    wchar_t clock[80]{};
    wchar_t thousands_separator[4]{};
};

template <int Size>
void read_locale_text(wchar_t (&out)[Size], const wchar_t* name, LCTYPE type)
{
    // What cannot be read stays empty.
    ::GetLocaleInfoEx(name, type, out, Size);
}

/// Read on first use, then kept for the life of the process.
const locale_texts& user_locale()
{
    static const locale_texts user = [] {
        locale_texts read;
        ::GetUserDefaultLocaleName(read.name, LOCALE_NAME_MAX_LENGTH);
        read_locale_text(read.short_date, read.name, LOCALE_SSHORTDATE);
        read_locale_text(read.clock, read.name, LOCALE_STIMEFORMAT);
        read_locale_text(read.thousands_separator, read.name, LOCALE_STHOUSAND);
        return read;
    }();
    return user;
}

std::size_t write_date(text_buffer out, const SYSTEMTIME& time, const wchar_t* picture)
{
    return size_of_text(::GetDateFormatEx(user_locale().name, 0, &time, picture, girder::as_wide(out.data()),
                                          static_cast<int>(out.size()), nullptr));
}

std::size_t write_time(text_buffer out, const SYSTEMTIME& time, const wchar_t* picture)
{
    return size_of_text(::GetTimeFormatEx(user_locale().name, 0, &time, picture, girder::as_wide(out.data()),
                                          static_cast<int>(out.size())));
}

std::size_t write_date_and_time(text_buffer out, const SYSTEMTIME& time)
{
    const std::size_t date = write_date(out, time, user_locale().short_date);
    char16_t clock[longest_system_text];
    const std::size_t size = write_time(clock, time, user_locale().clock);
    if (date + 1 + size > out.size())
        return date;
    out[date] = u' ';
    std::copy_n(clock, size, out.data() + date + 1);
    return date + 1 + size;
}

} // namespace

bool to_local_time(std::int64_t seconds, std::tm& local)
{
    return seconds >= 0 && seconds <= last_local_second && _localtime64_s(&local, &seconds) == 0;
}

std::size_t write_system_text(text_buffer out, char16_t conversion, const std::tm& local)
{
    const SYSTEMTIME time = system_time(local);
    switch (conversion) {
    case u'a':
        return write_date(out, time, L"ddd");
    case u'A':
        return write_date(out, time, L"dddd");
    case u'b':
    case u'h':
        return write_date(out, time, L"MMM");
    case u'B':
        return write_date(out, time, L"MMMM");
    case u'p':
        return write_time(out, time, L"tt");
    case u'r':
    case u'X':
        return write_time(out, time, user_locale().clock);
    case u'x':
        return write_date(out, time, user_locale().short_date);
    case u'Z':
        return std::wcsftime(girder::as_wide(out.data()), out.size(), L"%Z", &local);
    default:
        return write_date_and_time(out, time);
    }
}

std::u16string_view thousands_separator()
{
    return girder::as_utf16(user_locale().thousands_separator);
}

} // namespace fmtkit::details
