#include "format/compile.h"
#include "format/format.h"
#include "format/literals.h"

#include <gmock/gmock.h>

#include <limits>

namespace {

using namespace fmtkit;

/// Formats known at build time have the same items, and are rendered by code of their own, which has to say the same.
template <details::fixed_text Text, typename... Arguments>
void expect_same_text(const Arguments&... arguments)
{
    constexpr literal_format<Text> literal;
    const auto compiled = compile(literal.text());
    EXPECT_THAT(compiled.items(), testing::ElementsAreArray(literal.items().begin(), literal.items().end()));
    const auto expected = fmtkit::format(compiled, arguments...);
    EXPECT_EQ(fmtkit::format(literal, arguments...), expected) << testing::PrintToString(literal.text());
    auto appended = expected;
    fmtkit::append(appended, literal, arguments...);
    EXPECT_EQ(appended, expected + expected);
    appended.reserve(5000); // no need to grow
    fmtkit::append(appended, literal, arguments...);
    EXPECT_EQ(appended, expected + expected + expected);
}

template <typename Number>
void expect_same_numbers(Number number)
{
    expect_same_text<u"{0}|{0+}|{0u}|{0l}|{0c}|{0e}|{0b2}|{0b8}|{0b}">(number);
    expect_same_text<u"{0b16}|{0b16x}|{0b16p}|{0b016xp}|{0b016X}|{0ub016xp}|{0+b016}">(number);
    expect_same_text<u"{0w2arf0}|{0w9arf0}|{0w10arf0}|{0w19arf0}|{0w20arf0}|{0w25arf0}|{0+w12arf0}">(number);
    expect_same_text<u"{0w12}|{0w12ac}|{0w12ar}|{0b016w12arf.}|{0w,3}|{0w,3ear}|{0w12,3}">(number);
    expect_same_text<"{0}|{0+w12arf0}|{0b016xp}|{0w40}|{0lw40ar}|{0c}">(number);
}

TEST(literal_test, numbers)
{
    for (const std::int32_t number : {0, 9, 10, 99, 100, -1, -12, std::numeric_limits<std::int32_t>::max(),
                                      std::numeric_limits<std::int32_t>::min()}) {
        expect_same_numbers(number);
        expect_same_numbers(static_cast<std::uint32_t>(number));
    }
    for (std::uint64_t number = 1; number < 1'000'000'000'000'000'000; number *= 10) {
        expect_same_numbers(number);
        expect_same_numbers(number - 1);
        expect_same_numbers(-static_cast<std::int64_t>(number));
    }
    expect_same_numbers(std::numeric_limits<std::uint64_t>::max());
    expect_same_numbers(std::numeric_limits<std::int64_t>::min());
    expect_same_numbers(std::uint8_t{200});
    expect_same_numbers(std::int16_t{-200});
}

TEST(literal_test, texts)
{
    for (std::size_t size = 0; size < 300; ++size) {
        const std::u16string wide(size, u'ä');
        const std::string narrow(size, 'x');
        expect_same_text<u"<{}>{}<{0w9}>{0w,9e}{1w,9ear}{0w9,5}{1w9,5ar}">(wide, narrow);
        expect_same_text<"<{}>{}<{0w9}>{0w,9e}{1w,9ear}{0w9,5}{1w9,5ar}">(wide, narrow);
    }
    expect_same_text<u"">();
    expect_same_text<u"{{a}}{0}{{{{">(u"text");
    expect_same_text<u"{0}{3}{1}">("pointer", std::u16string_view(u"view"));
    expect_same_text<"{7+acb08cef*lnp3ssaw70000,9?|b16Xp}">();
}

TEST(literal_test, conditions_and_times)
{
    for (const bool first : {false, true}) {
        for (const bool second : {false, true}) {
            expect_same_text<u"{0?<}A{1?<}B{1?|}C{1?>}D{0?>}E">(first, second);
            expect_same_text<u"{0?|}A{0?>}B{0?<}C{1?<}{1?|}D{0?|}E{1?|}F{0?>}G{1?>}H">(first, second);
            expect_same_text<u"{0?<}A{1?<}B{9?>}C{1?|?>}D{9?<}E">(first, second);
            expect_same_text<u"{0}{0w9}{0?<t(%F)}A">(first);
        }
    }
    const girder::file_time time{girder::unix_epoch_ticks + 1'750'852'989 * girder::ticks_per_second};
    expect_same_text<u"{t(%FT%T%z)}|{0t(%x)w30ar}|{0}|{0t()}">(time);
    expect_same_text<"{t(%F %F %F %F %F)}|{0t(\303\244%\303\244%E\303\244%F)w30ar}">(time);
}

} // namespace
