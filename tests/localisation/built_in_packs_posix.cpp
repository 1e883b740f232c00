#include "built_in_packs.h"
#include "localisation/string_tables.h"

#include <fstream>
#include <iterator>
#include <string>

namespace {

std::string content_of(const char* path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

void support::load_built_in_packs()
{
    static const std::string common = content_of(STRING_PACK_FOLDER "/common.bin");
    static const std::string program = content_of(STRING_PACK_FOLDER "/program.bin");
    tidelink::build_string_tables({.common = std::as_bytes(std::span(common)),
                                   .program = std::as_bytes(std::span(program)),
                                   .common_translation = {},
                                   .program_translation = {}});
}
