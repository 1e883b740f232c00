// Rich text markup out of any UTF-16: the runs cover the text, links lead to safe addresses, and no text gets lost.

#include "require.h"
#include "ui/rich_text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace {

using fuzz::require;
using namespace girder::ui;

void check(const rich_text& read)
{
    std::size_t end = 0;
    const text_run* previous = nullptr;
    for (const text_run& run : read.runs) {
        require(run.begin == end && run.length > 0);
        require(!previous || previous->style != run.style);
        require(run.style.percent >= 25 && run.style.percent <= 400);
        require(run.style.link < static_cast<int>(read.addresses.size()));
        end += run.length;
        previous = &run;
    }
    require(end == read.text.size());
    for (std::size_t link = 0; link < read.addresses.size(); ++link) {
        require(is_safe_address(read.addresses[link]));
        require(!read.link_text(static_cast<int>(link)).empty());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::u16string input(size / sizeof(char16_t), u'\0');
    std::memcpy(input.data(), data, input.size() * sizeof(char16_t));
    check(parse_markup(input));

    std::u16string shown = input;
    std::erase_if(shown, [](char16_t unit) { return unit == u'\r' || unit == u'\0'; });
    require(parse_markup(escaped_markup(input)).text == shown);
    return 0;
}
