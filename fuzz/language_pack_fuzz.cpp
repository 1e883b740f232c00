// Whole language packs out of any bytes, laid over the built-in texts as the program does it: either all of a pack is
// used or none of it, every text that is served lies in a pack, and a translation that is used as a format has no
// argument that the English text lacks.

#include "format/compile.h"
#include "localisation/language_pack.h"
#include "localisation/string_tables.h"
#include "require.h"
#include "served_text.h"

#include <bitset>
#include <cstring>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

namespace {

using fuzz::bytes;
using fuzz::require;
using namespace tidelink;

std::string content_of(const char* path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

const std::string common_pack = content_of(STRING_PACK_FOLDER "/common.bin");
const std::string program_pack = content_of(STRING_PACK_FOLDER "/program.bin");
const bytes common = std::as_bytes(std::span(common_pack));
const bytes program = std::as_bytes(std::span(program_pack));

/// The text in memory of its own: where it is stored it may be at an odd address.
std::u16string copy_of(std::u16string_view text)
{
    std::u16string copy(text.size(), u'\0');
    if (!text.empty())
        std::memcpy(copy.data(), reinterpret_cast<const std::byte*>(text.data()), text.size() * sizeof(char16_t));
    return copy;
}

/// At most as many as the English texts have.
std::bitset<16> arguments_of(std::u16string_view text)
{
    const std::u16string copy = copy_of(text);
    std::bitset<16> used;
    const fmtkit::CompiledFormat format = fmtkit::compile(copy);
    for (const fmtkit::FormatItem& item : format.items())
        if ((item.flags & fmtkit::flag_literal) == 0)
            used.set(item.argIndex);
    return used;
}

/// Every id's text, then its items; more of them than any list has.
template <typename Look>
void for_every_text(Look look)
{
    for (const std::uint32_t id : string_slot::ids) {
        look(text(id));
        for (std::uint32_t index = 0; index < 16; ++index)
            look(item(id, index));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::vector<std::u16string> english = [] {
        build_string_tables({common, program, {}, {}});
        std::vector<std::u16string> texts;
        for_every_text([&texts](std::u16string_view each) { texts.push_back(copy_of(each)); });
        return texts;
    }();
    const bytes file(reinterpret_cast<const std::byte*>(data), size);
    if (!is_language_pack(file))
        return 0;
    const bytes common_module = findModule(file, u"common");
    const bytes program_module = findModule(file, u"tl_server_config.exe");
    build_string_tables({common, program, common_module, program_module});
    const auto accepted = [](bytes module) {
        return module.data() == nullptr || StringLayer::read(module, pack_form::bare, nullptr).has_value();
    };
    const bool is_used = accepted(common_module) && accepted(program_module);
    for_every_text([&, expected = english.begin()](std::u16string_view served) mutable {
        require(is_used || copy_of(served) == *expected);
        fuzz::require_served_from(served, {common, program, file});
        require((arguments_of(served) & ~arguments_of(*expected++)).none());
    });
    return 0;
}
