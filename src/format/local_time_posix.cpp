#include "base/utf.h"
#include "format/local_time.h"

#include <langinfo.h>

#include <clocale>
#include <string>

namespace fmtkit::details {
namespace {

/// The locale that the user's environment names, made once.
locale_t user_locale()
{
    static const locale_t user = [] {
        const locale_t named = ::newlocale(LC_ALL_MASK, "", nullptr);
        return named ? named : ::newlocale(LC_ALL_MASK, "C", nullptr);
    }();
    return user;
}

} // namespace

bool to_local_time(std::int64_t seconds, std::tm& local)
{
    if (seconds < 0 || seconds > last_local_second)
        return false;
    const std::time_t time = seconds;
    return ::localtime_r(&time, &local) != nullptr;
}

std::size_t write_system_text(std::span<char16_t, longest_system_text> out, char16_t conversion, const std::tm& local)
{
    const char pattern[] = {'%', static_cast<char>(conversion), '\0'};
    char bytes[longest_system_text];
    const std::size_t size = ::strftime_l(bytes, sizeof bytes, pattern, &local, user_locale());
    return static_cast<std::size_t>(girder::write_utf16(out.data(), {bytes, size}) - out.data());
}

std::u16string_view thousands_separator()
{
    static const std::u16string separator = girder::to_utf16(::nl_langinfo_l(THOUSEP, user_locale()));
    return separator;
}

} // namespace fmtkit::details
