#include "base/utf.h"
#include "format/local_time.h"

#include <langinfo.h>

#include <clocale>

namespace fmtkit::details {
namespace {

/// The last second of the year 3000, the end of _localtime64_s.
constexpr std::int64_t last_second = 32'535'215'999;

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

std::optional<local_time> to_local_time(std::int64_t seconds)
{
    if (seconds < 0 || seconds > last_second)
        return std::nullopt;
    local_time local;
    const std::time_t time = seconds;
    if (!::localtime_r(&time, &local.fields))
        return std::nullopt;
    local.offset_minutes = static_cast<int>(local.fields.tm_gmtoff / 60);
    local.zone_name = local.fields.tm_zone;
    return local;
}

std::u16string locale_time_text(char16_t conversion, const std::tm& fields)
{
    const char pattern[] = {'%', static_cast<char>(conversion), '\0'};
    char buffer[256];
    const std::size_t length = ::strftime_l(buffer, sizeof buffer, pattern, &fields, user_locale());
    return girder::to_utf16({buffer, length});
}

const std::u16string& thousands_separator()
{
    static const std::u16string separator = girder::to_utf16(::nl_langinfo_l(THOUSEP, user_locale()));
    return separator;
}

} // namespace fmtkit::details
