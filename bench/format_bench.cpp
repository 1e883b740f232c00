#include "format/compile.h"
#include "format/format.h"
#include "format/literals.h"
#include "harness.h"

#include <absl/strings/str_cat.h>
#include <fmt/chrono.h>
#include <fmt/compile.h>

#include <array>
#include <cstdio>
#include <ctime>
#include <string>
#include <string_view>

// Formatting into a fresh string. The peers write UTF-8, which is the easier work: half the bytes, and short results
// need no allocation.

namespace {

using namespace fmtkit::literals;
using bench::participant;
using bench::random_source;

constexpr std::size_t operations = 500;

/// Arguments of one call; each work uses some of them.
struct arguments {
    std::string text;
    std::u16string wide;
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    std::uint32_t third = 0;
    std::uint32_t fourth = 0;
    bool condition = false;
    std::time_t seconds = 0;
};
std::array<arguments, operations> drawn;

std::uint32_t below(random_source& random, std::uint32_t limit)
{
    return std::uniform_int_distribution<std::uint32_t>(0, limit - 1)(random);
}

void draw_text(random_source& random, arguments& into, std::size_t length)
{
    into.text.clear();
    while (into.text.size() < length)
        into.text += static_cast<char>('a' + below(random, 26));
    into.wide.assign(into.text.begin(), into.text.end());
}

bool equal(const std::string& text, const std::string& expected)
{
    return text == expected;
}
bool equal(const std::u16string& text, const std::string& expected)
{
    return text == std::u16string(expected.begin(), expected.end());
}

using golden_text = std::string (*)(const arguments&);

template <typename Make>
participant writes(std::string name, golden_text golden, Make make)
{
    return {.name = std::move(name),
            .run =
                [make] {
                    for (const arguments& each : drawn)
                        bench::keep(make(each));
                },
            .is_right =
                [make, golden] {
                    return std::ranges::all_of(drawn,
                                               [&](const arguments& each) { return equal(make(each), golden(each)); });
                }};
}

template <typename... Values>
std::string printed(const char* pattern, Values... values)
{
    char buffer[256];
    const int length = std::snprintf(buffer, sizeof buffer, pattern, values...);
    return {buffer, static_cast<std::size_t>(length)};
}

/// One work: how its arguments are drawn, its expected text, and everybody's way to it.
struct work {
    std::string name;
    void (*draw)(random_source&, arguments&);
    participant literal;  ///< ours, known at build time
    participant compiled; ///< ours, compiled before the timing
    participant anew;     ///< ours, compiled each time
    double literal_goal;
    double compiled_goal;
    std::vector<participant> literal_peers;
    std::vector<participant> compiled_peers;
};

void compare(bench::report& report, const work& each)
{
    const auto draw = [&](random_source& random) {
        for (arguments& one : drawn)
            each.draw(random, one);
    };
    report.compare({each.name, each.literal_goal, each.literal, each.literal_peers, draw});
    report.compare({each.name, each.compiled_goal, each.compiled, each.compiled_peers, draw});
    report.compare({each.name, 0, each.anew, each.compiled_peers, draw});
}

constexpr auto built = "known at build time";
constexpr auto compiled_before = "compiled at run time";
constexpr auto compiled_anew = "compiled for each call";
constexpr auto fmt_runtime = "fmt run-time";
constexpr auto fmt_compile = "FMT_COMPILE";
constexpr auto str_cat = "StrCat";

#define OURS(text, ...)                                                                                                \
    .literal = writes(built, golden, [](const arguments& a) { return fmtkit::format(u##text##_fmt, __VA_ARGS__); }),   \
    .compiled = writes(compiled_before, golden,                                                                        \
                       [format = fmtkit::compile(std::u16string_view(u##text))](const arguments& a) {                  \
                           return fmtkit::format(format, __VA_ARGS__);                                                 \
                       }),                                                                                             \
    .anew = writes(compiled_anew, golden, [](const arguments& a) {                                                     \
        return fmtkit::format(fmtkit::compile(std::u16string_view(u##text)), __VA_ARGS__);                             \
    })
#define FMT_COMPILED(text, ...)                                                                                        \
    writes(fmt_compile, golden, [](const arguments& a) { return fmt::format(FMT_COMPILE(text), __VA_ARGS__); })
#define FMT_RUNTIME(text, ...)                                                                                         \
    writes(fmt_runtime, golden, [](const arguments& a) { return fmt::format(fmt::runtime(text), __VA_ARGS__); })
#define STR_CAT(...) writes(str_cat, golden, [](const arguments& a) { return absl::StrCat(__VA_ARGS__); })

work error_message()
{
    constexpr golden_text golden = [](const arguments& a) {
        return printed("Error %s (0x%08x)", a.text.c_str(), a.first);
    };
    return {.name = "F1 `Error {0} ({1ub016xp})`",
            .draw =
                [](random_source& random, arguments& a) {
                    draw_text(random, a, 60);
                    a.first = static_cast<std::uint32_t>(random());
                },
            OURS("Error {0} ({1ub016xp})", a.wide, a.first),
            .literal_goal = 0.65,
            .compiled_goal = 0.40,
            .literal_peers = {FMT_COMPILED("Error {} ({:#010x})", a.text, a.first),
                              STR_CAT("Error ", a.text, " (0x", absl::Hex(a.first, absl::kZeroPad8), ")")},
            .compiled_peers = {FMT_RUNTIME("Error {} ({:#010x})", a.text, a.first)}};
}

work version()
{
    constexpr golden_text golden = [](const arguments& a) {
        return printed("%u.%02u.%02u.%04u", a.first, a.second, a.third, a.fourth);
    };
    return {.name = "F2 `{0}.{1w2arf0}.{2w2arf0}.{3w4arf0}`",
            .draw =
                [](random_source& random, arguments& a) {
                    a.first = below(random, 20);
                    a.second = below(random, 100);
                    a.third = below(random, 100);
                    a.fourth = below(random, 10'000);
                },
            OURS("{0}.{1w2arf0}.{2w2arf0}.{3w4arf0}", a.first, a.second, a.third, a.fourth),
            .literal_goal = 0.65,
            .compiled_goal = 0.45,
            .literal_peers = {FMT_COMPILED("{}.{:02}.{:02}.{:04}", a.first, a.second, a.third, a.fourth),
                              STR_CAT(a.first, ".", absl::Dec(a.second, absl::kZeroPad2), ".",
                                      absl::Dec(a.third, absl::kZeroPad2), ".", absl::Dec(a.fourth, absl::kZeroPad4))},
            .compiled_peers = {FMT_RUNTIME("{}.{:02}.{:02}.{:04}", a.first, a.second, a.third, a.fourth)}};
}

work suffix()
{
    constexpr golden_text golden = [](const arguments& a) {
        return a.condition ? printed("%05u@%u", a.first, a.second) : printed("%05u", a.first);
    };
    return {.name = "F3 `{0arf0w5}{2?<}@{1}{2?>}`",
            .draw =
                [](random_source& random, arguments& a) {
                    a.first = below(random, 65'536);
                    a.second = below(random, 65'536);
                    a.condition = below(random, 2) == 0;
                },
            OURS("{0arf0w5}{2?<}@{1}{2?>}", a.first, a.second, a.condition),
            .literal_goal = 1.0,
            .compiled_goal = 0.55,
            .literal_peers = {writes(str_cat, golden,
                                     [](const arguments& a) {
                                         return a.condition
                                                    ? absl::StrCat(absl::Dec(a.first, absl::kZeroPad5), "@", a.second)
                                                    : absl::StrCat(absl::Dec(a.first, absl::kZeroPad5));
                                     })},
            .compiled_peers = {writes(fmt_runtime, golden, [](const arguments& a) {
                return a.condition ? fmt::format(fmt::runtime("{:05}@{}"), a.first, a.second)
                                   : fmt::format(fmt::runtime("{:05}"), a.first);
            })}};
}

work command_line()
{
    constexpr golden_text golden = [](const arguments& a) {
        return printed("\"%stl_server.exe\" -install-service", a.text.c_str());
    };
    return {.name = "F4 `\"{}tl_server.exe\" -install-service`",
            .draw = [](random_source& random, arguments& a) { draw_text(random, a, 40); },
            OURS("\"{}tl_server.exe\" -install-service", a.wide),
            .literal_goal = 0.65,
            .compiled_goal = 0.50,
            .literal_peers = {FMT_COMPILED("\"{}tl_server.exe\" -install-service", a.text),
                              STR_CAT("\"", a.text, "tl_server.exe\" -install-service")},
            .compiled_peers = {FMT_RUNTIME("\"{}tl_server.exe\" -install-service", a.text)}};
}

girder::file_time at(std::time_t seconds)
{
    return {girder::unix_epoch_ticks + seconds * girder::ticks_per_second};
}

void compare_times(bench::report& report)
{
    constexpr golden_text golden = [](const arguments& a) {
        std::tm local{};
        ::localtime_r(&a.seconds, &local);
        char buffer[64];
        return std::string(buffer, std::strftime(buffer, sizeof buffer, "%Y-%m-%dT%H:%M:%S%z", &local));
    };
    report.compare(
        {.work = "F5 `{t(%FT%T%z)}`",
         .goal = 0.5,
         .subject = writes(built, golden,
                           [](const arguments& a) { return fmtkit::format(u"{t(%FT%T%z)}"_fmt, at(a.seconds)); }),
         .peers = {writes(fmt_runtime, golden,
                          [](const arguments& a) {
                              return fmt::format(fmt::runtime("{:%FT%T%z}"), fmt::localtime(a.seconds));
                          }),
                   writes(fmt_compile, golden,
                          [](const arguments& a) {
                              return fmt::format(FMT_COMPILE("{:%FT%T%z}"), fmt::localtime(a.seconds));
                          })},
         .draw = [](random_source& random) {
             for (arguments& one : drawn)
                 one.seconds = static_cast<std::time_t>(below(random, 2'000'000'000));
         }});
}

} // namespace

int main()
{
    bench::report report("Formatting");
    compare(report, error_message());
    compare(report, version());
    compare(report, suffix());
    compare(report, command_line());
    compare_times(report);
    return report.exit_code();
}
