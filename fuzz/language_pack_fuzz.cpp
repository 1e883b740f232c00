// Whole language packs out of any bytes, laid over the built-in texts as the program does it: either all of a pack is
// used or none of it, every text that is served lies in a pack, and a translation that is used as a format has no
// argument that the English text lacks.

#include "format/compile.h"
#include "localisation/language_pack.h"
#include "localisation/string_tables.h"
#include "require.h"
#include "served_text.h"

#include <array>
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

/// As many as the English texts have at most.
constexpr std::size_t argument_limit = 16;
using arguments = std::array<bool, argument_limit>;

arguments arguments_of(std::u16string_view text)
{
    const std::u16string copy = copy_of(text);
    arguments used{};
    const fmtkit::CompiledFormat format = fmtkit::compile(copy);
    for (const fmtkit::FormatItem& item : format.items())
        if ((item.flags & fmtkit::flag_literal) == 0)
            used.at(item.argIndex) = true;
    return used;
}

void check_text(std::u16string_view text, std::u16string_view english, bytes file)
{
    if (text.empty())
        return;
    fuzz::require_served_from(text, {common, program, file});
    const arguments used = arguments_of(text);
    const arguments allowed = arguments_of(english);
    for (std::size_t index = 0; index < used.size(); ++index)
        require(!used[index] || allowed[index]);
}

struct english_text {
    std::u16string single;
    std::vector<std::u16string> items;
};

std::vector<english_text> all_texts()
{
    constexpr std::uint32_t more_than_any_list_has = 16;
    std::vector<english_text> texts;
    for (const std::uint32_t id : string_slot::ids) {
        texts.push_back({copy_of(text(id)), {}});
        for (std::uint32_t index = 0; index < more_than_any_list_has; ++index)
            texts.back().items.push_back(copy_of(item(id, index)));
    }
    return texts;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::vector<english_text> english = [] {
        build_string_tables({common, program, {}, {}});
        return all_texts();
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
    for (std::size_t slot = 0; slot < string_slot::count; ++slot) {
        const std::uint32_t id = string_slot::ids[slot];
        require(is_used || copy_of(text(id)) == english[slot].single);
        check_text(text(id), english[slot].single, file);
        for (std::uint32_t index = 0; index < english[slot].items.size(); ++index)
            check_text(item(id, index), english[slot].items[index], file);
    }
    return 0;
}
