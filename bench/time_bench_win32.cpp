#include "base/wide.h"
#include "format/format.h"
#include "format/literals.h"
#include "harness.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <cwchar>
#include <string>
#include <string_view>

// The time stamp of the platform's own function beside ours.

namespace {

using namespace fmtkit::literals;

std::array<__time64_t, 500> drawn;

/// The runtime has neither %F nor %T nor a numeric zone.
/// \return the length
std::size_t write_by_wcsftime(wchar_t (&buffer)[64], __time64_t seconds)
{
    std::tm local{};
    _localtime64_s(&local, &seconds);
    std::size_t length = std::wcsftime(buffer, 64, L"%Y-%m-%dT%H:%M:%S", &local);
    std::tm as_utc = local;
    const auto minutes = static_cast<int>((_mkgmtime64(&as_utc) - seconds) / 60);
    const auto distance = static_cast<unsigned>(std::abs(minutes));
    for (const wchar_t unit :
         {minutes < 0 ? L'-' : L'+', static_cast<wchar_t>(L'0' + distance / 600),
          static_cast<wchar_t>(L'0' + distance / 60 % 10), static_cast<wchar_t>(L'0' + distance % 60 / 10),
          static_cast<wchar_t>(L'0' + distance % 10)})
        buffer[length++] = unit;
    return length;
}

girder::file_time at(__time64_t seconds)
{
    return {girder::unix_epoch_ticks + seconds * girder::ticks_per_second};
}

// Into a fresh string, whose allocation takes longer than formatting.

std::u16string fresh_by_wcsftime(__time64_t seconds)
{
    wchar_t buffer[64];
    const std::size_t length = write_by_wcsftime(buffer, seconds);
    return {buffer, buffer + length};
}

std::u16string fresh_by_format(__time64_t seconds)
{
    return fmtkit::format(u"{t(%FT%T%z)}"_fmt, at(seconds));
}

// Into memory that is there.

std::u16string_view reused_by_wcsftime(__time64_t seconds)
{
    static wchar_t buffer[64];
    return girder::as_utf16({buffer, write_by_wcsftime(buffer, seconds)});
}

std::u16string_view reused_by_format(__time64_t seconds)
{
    static std::u16string text;
    text.clear();
    fmtkit::append(text, u"{t(%FT%T%z)}"_fmt, at(seconds));
    return text;
}

/// From calendar arithmetic alone, in the zone of the run: central European time with the runtime's own idea of summer.
std::u16string expected(__time64_t seconds)
{
    std::tm local{};
    _localtime64_s(&local, &seconds);
    const int hours = local.tm_isdst > 0 ? 2 : 1;
    const __time64_t shifted = seconds + hours * 3600;
    std::tm utc{};
    _gmtime64_s(&utc, &shifted);
    char buffer[64];
    const int length = std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02dT%02d:%02d:%02d+%02d00", utc.tm_year + 1900,
                                     utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec, hours);
    return {buffer, buffer + length};
}

template <typename Make>
bench::participant writes(const char* name, Make make)
{
    return {.name = name,
            .run =
                [make] {
                    for (const __time64_t each : drawn)
                        bench::keep(make(each));
                },
            .is_right =
                [make] {
                    return std::ranges::all_of(drawn, [&](__time64_t each) { return make(each) == expected(each); });
                }};
}

} // namespace

int main()
{
    const auto draw = [](bench::random_source& random) {
        std::uniform_int_distribution<__time64_t> seconds(0, 2'000'000'000);
        std::ranges::generate(drawn, [&] { return seconds(random); });
    };
    bench::report report("Formatting a time on Windows");
    report.compare({.work = "F5 `{t(%FT%T%z)}`, into a buffer or a reused string",
                    .goal = 0.06,
                    .subject = writes("known at build time", reused_by_format),
                    .peers = {writes("wcsftime", reused_by_wcsftime)},
                    .draw = draw});
    report.compare({.work = "F5 `{t(%FT%T%z)}`, into a fresh string",
                    .goal = 0,
                    .subject = writes("known at build time", fresh_by_format),
                    .peers = {writes("wcsftime", fresh_by_wcsftime)},
                    .draw = draw});
    return report.exit_code();
}
