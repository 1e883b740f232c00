#include "serialisation/date_text.h"

#include <chrono>

namespace girder::nsm {
namespace {

/// Takes fixed-width decimal fields and separators off the front of a text.
class date_scanner {
public:
    explicit date_scanner(std::u16string_view text) noexcept : rest_(text) {}

    int number(std::size_t digits)
    {
        int value = 0;
        for (std::size_t i = 0; i < digits; ++i) {
            const char16_t digit = next();
            good_ = good_ && digit >= u'0' && digit <= u'9';
            value = value * 10 + (digit - u'0');
        }
        return good_ ? value : 0;
    }

    void expect(char16_t separator) { good_ = next() == separator && good_; }

    /// -1 for "-", 1 for "+".
    int sign()
    {
        const char16_t written = next();
        good_ = good_ && (written == u'+' || written == u'-');
        return written == u'-' ? -1 : 1;
    }

    bool at_end() const noexcept { return rest_.empty(); }
    bool good() const noexcept { return good_; }

private:
    char16_t next()
    {
        if (rest_.empty()) {
            good_ = false;
            return u'\0';
        }
        const char16_t unit = rest_.front();
        rest_.remove_prefix(1);
        return unit;
    }

    std::u16string_view rest_;
    bool good_ = true;
};

} // namespace

std::optional<file_time> parse_date(std::u16string_view text)
{
    namespace chr = std::chrono;
    date_scanner scanner(text);
    const chr::year year{scanner.number(4)};
    scanner.expect(u'-');
    const chr::month month{static_cast<unsigned>(scanner.number(2))};
    scanner.expect(u'-');
    const chr::day day{static_cast<unsigned>(scanner.number(2))};
    scanner.expect(u'T');
    const int hour = scanner.number(2);
    scanner.expect(u':');
    const int minute = scanner.number(2);
    scanner.expect(u':');
    const int second = scanner.number(2);
    int offset_minutes = 0;
    if (!scanner.at_end()) {
        const int sign = scanner.sign();
        const int hours = scanner.number(2);
        const int minutes = scanner.number(2);
        offset_minutes = sign * (hours * 60 + minutes);
        if (hours > 23 || minutes > 59)
            return std::nullopt;
    }
    const chr::year_month_day date = year / month / day;
    if (!scanner.good() || !scanner.at_end() || !date.ok() || date.year() < chr::year{1601} || hour > 23 ||
        minute > 59 || second > 60)
        return std::nullopt;
    const std::int64_t days = chr::sys_days(date).time_since_epoch().count();
    const std::int64_t seconds =
        days * 86'400 + std::int64_t{hour} * 3'600 + (std::int64_t{minute} - offset_minutes) * 60 + second;
    return file_time{unix_epoch_ticks + seconds * ticks_per_second};
}

} // namespace girder::nsm
