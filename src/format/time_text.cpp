#include "format/time_text.h"

#include "base/utf.h"
#include "format/local_fields.h"
#include "format/local_time.h"
#include "format/number_text.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <type_traits>

namespace fmtkit::details {
namespace {

constexpr bool is_leap(int year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

/// Year and week of ISO 8601: weeks begin on Monday, and the first one has the year's first Thursday.
struct iso_week {
    int year;
    int week;
};

iso_week iso_week_of(const local_fields& local)
{
    const int day_from_monday = (local.weekday() + 6) % 7;
    const int thursday = local.day_of_year() - day_from_monday + 3;
    if (thursday < 0)
        return {.year = local.year - 1, .week = (thursday + (is_leap(local.year - 1) ? 366 : 365)) / 7 + 1};
    if (thursday >= (is_leap(local.year) ? 366 : 365))
        return {.year = local.year + 1, .week = 1};
    return {.year = local.year, .week = thursday / 7 + 1};
}

constexpr int twelve_hour(int hour)
{
    return hour % 12 == 0 ? 12 : hour % 12;
}

void write_two_digits(char16_t* out, int value)
{
    std::memcpy(out, &decimal_pairs<char16_t>[2 * static_cast<std::size_t>(static_cast<unsigned>(value))],
                2 * sizeof(char16_t));
}

template <typename Char>
constexpr bool is_ascii(Char unit)
{
    return static_cast<std::make_unsigned_t<Char>>(unit) < 0x80;
}

/// Writes a time conversion by conversion. Those without a limit of their own look at it themselves; the others end at
/// most longest_conversion behind it.
class time_writer {
public:
    time_writer(char16_t* out, std::int64_t seconds, const local_fields& local)
        : next_(out), limit_(out + longest_time_text), seconds_(seconds), local_(local)
    {}

    /// \return the end, at most at the limit
    template <typename Char>
    char16_t* expand(std::basic_string_view<Char> pattern);

private:
    // Each passes on what it does not know to the next; what is used most comes first.
    void convert(char16_t conversion);
    void convert_rarer(char16_t conversion);
    void convert_week(char16_t conversion);
    void convert_name(char16_t conversion);

    void put(char16_t unit) { *next_++ = unit; }
    void put_within_limit(std::u16string_view text);
    /// Writes at least the first character of a pattern.
    /// \return how much of the pattern was written
    std::size_t put_text(std::u16string_view pattern);
    std::size_t put_text(std::string_view pattern);
    void number(std::uint64_t value);
    void two_digits(int value);
    void three_numbers(int first, char16_t separator, int second, int third);
    void year(int value);
    void zone_offset();
    void system_text(char16_t conversion);

    char16_t* next_;
    char16_t* const limit_;
    const std::int64_t seconds_; ///< since 1970-01-01 UTC
    const local_fields& local_;
};

template <typename Char>
char16_t* time_writer::expand(std::basic_string_view<Char> pattern)
{
    for (std::size_t i = 0; i < pattern.size() && next_ < limit_; ++i) {
        if (pattern[i] != Char('%') || i + 1 == pattern.size()) {
            i += put_text(pattern.substr(i)) - 1;
            continue;
        }
        ++i;
        if ((pattern[i] == Char('E') || pattern[i] == Char('O')) && i + 1 < pattern.size())
            ++i;
        if (is_ascii(pattern[i])) {
            convert(static_cast<char16_t>(pattern[i]));
        } else {
            put(u'%');
            --i;
        }
    }
    return std::min(next_, limit_);
}

std::size_t time_writer::put_text(std::u16string_view pattern)
{
    put(pattern[0]);
    return 1;
}

std::size_t time_writer::put_text(std::string_view pattern)
{
    const auto run = static_cast<std::size_t>(std::ranges::find_if(pattern, is_ascii<char>) - pattern.begin());
    if (run == 0) {
        put(static_cast<char16_t>(pattern[0]));
        return 1;
    }
    // As many bytes as the longest text can have.
    std::array<char16_t, 3 * longest_time_text> units;
    const char16_t* const end = girder::write_utf16(units.data(), pattern.substr(0, std::min(run, units.size())));
    put_within_limit({units.data(), end});
    return run;
}

void time_writer::put_within_limit(std::u16string_view text)
{
    next_ = std::copy_n(text.data(), std::min(text.size(), static_cast<std::size_t>(limit_ - next_)), next_);
}

void time_writer::number(std::uint64_t value)
{
    next_ += decimal_size(value);
    write_decimal_before(next_, value);
}

void time_writer::two_digits(int value)
{
    write_two_digits(next_, value);
    next_ += 2;
}

void time_writer::three_numbers(int first, char16_t separator, int second, int third)
{
    char16_t* const out = next_;
    write_two_digits(out, first);
    out[2] = separator;
    write_two_digits(out + 3, second);
    out[5] = separator;
    write_two_digits(out + 6, third);
    next_ = out + 8;
}

void time_writer::year(int value)
{
    two_digits(value / 100);
    two_digits(value % 100);
}

void time_writer::zone_offset()
{
    const int distance = std::abs(local_.distance);
    put(local_.distance < 0 ? u'-' : u'+');
    two_digits(distance / 60);
    two_digits(distance % 60);
}

void time_writer::system_text(char16_t conversion)
{
    // The system wants to know about summer time.
    std::tm local{};
    std::array<char16_t, longest_system_text> text;
    if (to_local_time(seconds_, local))
        put_within_limit({text.data(), write_system_text(text, conversion, local)});
}

void time_writer::convert(char16_t conversion)
{
    switch (conversion) {
    case u'F':
        two_digits(local_.year / 100);
        three_numbers(local_.year % 100, u'-', local_.month, local_.day);
        break;
    case u'T':
        three_numbers(local_.hour, u':', local_.minute, local_.second);
        break;
    case u'z':
        zone_offset();
        break;
    case u'Y':
        year(local_.year);
        break;
    case u'm':
        two_digits(local_.month);
        break;
    case u'd':
        two_digits(local_.day);
        break;
    case u'H':
        two_digits(local_.hour);
        break;
    case u'M':
        two_digits(local_.minute);
        break;
    case u'S':
        two_digits(local_.second);
        break;
    default:
        convert_rarer(conversion);
        break;
    }
}

void time_writer::convert_rarer(char16_t conversion)
{
    switch (conversion) {
    case u'%':
        put(u'%');
        break;
    case u'C':
        two_digits(local_.year / 100);
        break;
    case u'D':
        three_numbers(local_.month, u'/', local_.day, local_.year % 100);
        break;
    case u'I':
        two_digits(twelve_hour(local_.hour));
        break;
    case u'R':
        two_digits(local_.hour);
        put(u':');
        two_digits(local_.minute);
        break;
    case u'e':
        two_digits(local_.day);
        if (local_.day < 10)
            next_[-2] = u' ';
        break;
    case u'j':
        put(static_cast<char16_t>(u'0' + (local_.day_of_year() + 1) / 100));
        two_digits((local_.day_of_year() + 1) % 100);
        break;
    case u'n':
        put(u'\n');
        break;
    case u's':
        number(static_cast<std::uint64_t>(seconds_));
        break;
    case u't':
        put(u'\t');
        break;
    case u'y':
        two_digits(local_.year % 100);
        break;
    default:
        convert_week(conversion);
        break;
    }
}

void time_writer::convert_week(char16_t conversion)
{
    switch (conversion) {
    case u'G':
        year(iso_week_of(local_).year);
        break;
    case u'U':
        two_digits((local_.day_of_year() + 7 - local_.weekday()) / 7);
        break;
    case u'V':
        two_digits(iso_week_of(local_).week);
        break;
    case u'W':
        two_digits((local_.day_of_year() + 7 - (local_.weekday() + 6) % 7) / 7);
        break;
    case u'g':
        two_digits(iso_week_of(local_).year % 100);
        break;
    case u'u':
        number(local_.weekday() == 0 ? 7U : static_cast<unsigned>(local_.weekday()));
        break;
    case u'w':
        number(static_cast<unsigned>(local_.weekday()));
        break;
    default:
        convert_name(conversion);
        break;
    }
}

void time_writer::convert_name(char16_t conversion)
{
    switch (conversion) {
    case u'a':
    case u'A':
    case u'b':
    case u'B':
    case u'c':
    case u'h':
    case u'p':
    case u'r':
    case u'x':
    case u'X':
    case u'Z':
        system_text(conversion);
        break;
    default:
        put(u'%');
        put(conversion);
        break;
    }
}

template <typename Char>
char16_t* write_by_pattern(char16_t* out, girder::file_time time, std::basic_string_view<Char> pattern)
{
    // Wraps for times near the ends of the scale, which are then out of range.
    const auto since_epoch =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(time.ticks) - std::uint64_t{girder::unix_epoch_ticks});
    const std::int64_t seconds = since_epoch / girder::ticks_per_second;
    local_fields local;
    if (!get_local_fields(seconds, local))
        return nullptr;
    return time_writer(out, seconds, local).expand(pattern);
}

} // namespace

char16_t* write_time_text(char16_t* out, girder::file_time time, std::u16string_view pattern)
{
    return write_by_pattern(out, time, pattern);
}

char16_t* write_time_text(char16_t* out, girder::file_time time, std::string_view pattern)
{
    return write_by_pattern(out, time, pattern);
}

} // namespace fmtkit::details
