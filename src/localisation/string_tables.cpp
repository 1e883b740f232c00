#include "localisation/string_tables.h"

namespace tidelink {

namespace {

struct string_tables {
    StringTable common;
    StringTable program;
};

string_tables tables;

} // namespace

constinit std::array<std::u16string_view, string_slot::count> detail::texts_by_slot;

void build_string_tables(const string_packs& packs)
{
    tables.common = StringTable();
    tables.common.load(packs.common, packs.common_translation);
    tables.program = StringTable::above(tables.common);
    tables.program.load(packs.program, packs.program_translation);

    for (std::size_t slot = 0; slot < string_slot::count; ++slot) {
        const StringEntry* const entry = tables.program.find_or_null(string_slot::ids[slot]);
        detail::texts_by_slot[slot] = entry != nullptr ? entry->text() : std::u16string_view();
    }
}

const StringTable& common_strings() noexcept
{
    return tables.common;
}

const StringTable& program_strings() noexcept
{
    return tables.program;
}

} // namespace tidelink
