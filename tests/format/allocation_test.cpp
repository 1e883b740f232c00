#include "format/compile.h"
#include "format/format.h"
#include "format/literals.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

namespace {

std::size_t allocations = 0;

} // namespace

// NOLINTBEGIN: counting is what this program replaces them for
void* operator new(std::size_t size)
{
    ++allocations;
    if (void* const memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept
{
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
// NOLINTEND

namespace {

using namespace fmtkit::literals;

template <typename Work>
std::size_t allocations_of(const Work& work)
{
    const std::size_t before = allocations;
    work();
    return allocations - before;
}

/// At most one allocation for a fresh string, and none for one that once held as much, with the format known at build
/// time and compiled at run time.
template <fmtkit::details::fixed_text Text, typename... Arguments>
void expect_few_allocations(const Arguments&... arguments)
{
    constexpr fmtkit::literal_format<Text> literal;
    SCOPED_TRACE(testing::PrintToString(literal.text()));
    const auto expect_few = [&](const auto& format) {
        EXPECT_LE(allocations_of([&] { static_cast<void>(fmtkit::format(format, arguments...)); }), 1U);
        auto reused = fmtkit::format(format, arguments...);
        reused.shrink_to_fit();
        reused.clear();
        EXPECT_EQ(allocations_of([&] { fmtkit::append(reused, format, arguments...); }), 0U);
    };
    expect_few(literal);
    expect_few(fmtkit::compile(literal.text()));
}

TEST(allocation_test, one_for_a_fresh_string_none_for_a_reused_one)
{
    const std::u16string long_text(5000, u'x');
    const std::string long_bytes(5000, 'x');
    expect_few_allocations<u"Error {0} ({1ub016xp})">(u"Access denied.", 0x80070005U);
    expect_few_allocations<u"{}{} {0w6000ar}{2l}{2b2}{1?<}{3}{1?>}">(long_text, true, 1'234'567, long_bytes);
    expect_few_allocations<"{}{}">(long_text, long_bytes);
    expect_few_allocations<u"{t(%FT%T%z %x %X %c)w300}">(girder::file_time{girder::unix_epoch_ticks});
    expect_few_allocations<"{0?<}{0?<}{0?<}{1}{0?>}{0?>}{0?>}">(true, "a text that needs memory of its own");
}

} // namespace
