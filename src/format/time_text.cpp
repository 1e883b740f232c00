#include "format/time_text.h"

#include "base/utf.h"
#include "format/local_time.h"

#include <cstdlib>

namespace fmtkit::details {
namespace {

constexpr std::size_t longest_text = 40;

void append_number(std::u16string& out, int value, int width, char16_t fill)
{
    char16_t digits[12];
    int count = 0;
    auto rest = static_cast<unsigned>(std::abs(value));
    do {
        digits[count++] = static_cast<char16_t>(u'0' + rest % 10);
        rest /= 10;
    } while (rest != 0);
    if (value < 0)
        out += u'-';
    for (int i = count; i < width; ++i)
        out += fill;
    while (count > 0)
        out += digits[--count];
}

/// Year and week of ISO 8601: weeks begin on Monday, and the first one has the year's first Thursday.
struct iso_week {
    int year;
    int week;
};

constexpr bool is_leap(int year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

iso_week iso_week_of(const std::tm& fields)
{
    const int year = fields.tm_year + 1900;
    const int day_from_monday = (fields.tm_wday + 6) % 7;
    const int thursday = fields.tm_yday - day_from_monday + 3;
    if (thursday < 0)
        return {.year = year - 1, .week = (thursday + (is_leap(year - 1) ? 366 : 365)) / 7 + 1};
    const int days = is_leap(year) ? 366 : 365;
    if (thursday >= days)
        return {.year = year + 1, .week = 1};
    return {.year = year, .week = thursday / 7 + 1};
}

class time_writer {
public:
    time_writer(const local_time& time, std::int64_t seconds) : time_(time), seconds_(seconds) {}

    std::u16string write(std::u16string_view pattern)
    {
        expand(pattern);
        if (out_.size() > longest_text)
            out_.resize(longest_text);
        return std::move(out_);
    }

private:
    void expand(std::u16string_view pattern)
    {
        for (std::size_t i = 0; i < pattern.size(); ++i) {
            if (pattern[i] != u'%' || i + 1 == pattern.size()) {
                out_ += pattern[i];
                continue;
            }
            ++i;
            if ((pattern[i] == u'E' || pattern[i] == u'O') && i + 1 < pattern.size())
                ++i;
            convert(pattern[i]);
        }
    }

    void number(int value, int width = 2, char16_t fill = u'0') { append_number(out_, value, width, fill); }

    void convert(char16_t conversion)
    {
        const std::tm& t = time_.fields;
        const int hour12 = t.tm_hour % 12 == 0 ? 12 : t.tm_hour % 12;
        const int year = t.tm_year + 1900;
        switch (conversion) {
        case u'%':
            out_ += u'%';
            break;
        case u'C':
            number(year / 100);
            break;
        case u'D':
            expand(u"%m/%d/%y");
            break;
        case u'F':
            expand(u"%Y-%m-%d");
            break;
        case u'G':
            number(iso_week_of(t).year, 4);
            break;
        case u'H':
            number(t.tm_hour);
            break;
        case u'I':
            number(hour12);
            break;
        case u'M':
            number(t.tm_min);
            break;
        case u'R':
            expand(u"%H:%M");
            break;
        case u'S':
            number(t.tm_sec);
            break;
        case u'T':
            expand(u"%H:%M:%S");
            break;
        case u'U':
            number((t.tm_yday + 7 - t.tm_wday) / 7);
            break;
        case u'V':
            number(iso_week_of(t).week);
            break;
        case u'W':
            number((t.tm_yday + 7 - (t.tm_wday + 6) % 7) / 7);
            break;
        case u'Y':
            number(year, 4);
            break;
        case u'Z':
            out_ += girder::to_utf16(time_.zone_name);
            break;
        case u'd':
            number(t.tm_mday);
            break;
        case u'e':
            number(t.tm_mday, 2, u' ');
            break;
        case u'g':
            number(iso_week_of(t).year % 100);
            break;
        case u'h':
            out_ += locale_time_text(u'b', t);
            break;
        case u'j':
            number(t.tm_yday + 1, 3);
            break;
        case u'm':
            number(t.tm_mon + 1);
            break;
        case u'n':
            out_ += u'\n';
            break;
        case u's':
            out_ += girder::to_utf16(std::to_string(seconds_));
            break;
        case u't':
            out_ += u'\t';
            break;
        case u'u':
            number(t.tm_wday == 0 ? 7 : t.tm_wday, 1);
            break;
        case u'w':
            number(t.tm_wday, 1);
            break;
        case u'y':
            number(year % 100);
            break;
        case u'z':
            zone_offset();
            break;
        case u'a':
        case u'A':
        case u'b':
        case u'B':
        case u'c':
        case u'p':
        case u'r':
        case u'x':
        case u'X':
            out_ += locale_time_text(conversion, t);
            break;
        default:
            out_.append({u'%', conversion});
            break;
        }
    }

    void zone_offset()
    {
        const int distance = std::abs(time_.offset_minutes);
        out_ += time_.offset_minutes < 0 ? u'-' : u'+';
        number(distance / 60);
        number(distance % 60);
    }

    const local_time& time_;
    std::int64_t seconds_;
    std::u16string out_;
};

} // namespace

std::optional<std::u16string> format_time(girder::file_time time, std::u16string_view pattern)
{
    // Wraps for times near the ends of the scale, which are then out of range.
    const auto since_epoch =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(time.ticks) - std::uint64_t{girder::unix_epoch_ticks});
    const std::int64_t seconds = since_epoch / girder::ticks_per_second;
    const std::optional<local_time> local = to_local_time(seconds);
    if (!local)
        return std::nullopt;
    return time_writer(*local, seconds).write(pattern);
}

} // namespace fmtkit::details
