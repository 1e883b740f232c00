#include "localisation/string_tables.h"

#include "localisation/string_keys.h"

namespace tidelink {

namespace {

struct string_tables {
    StringTable common;
    StringTable program;
};

string_tables tables;

} // namespace

constinit std::array<std::u16string_view, string_slot::count> detail::texts_by_slot;

namespace {

/// \return false when a module of the language pack was refused
bool build_tables(const string_packs& packs)
{
    tables.common = StringTable();
    const bool common_accepted = tables.common.load(packs.common, packs.common_translation);
    tables.program = StringTable::above(tables.common);
    return tables.program.load(packs.program, packs.program_translation) && common_accepted;
}

} // namespace

void build_string_tables(const string_packs& packs)
{
    if (!build_tables(packs))
        build_tables({packs.common, packs.program, {}, {}});

    for (std::size_t slot = 0; slot < string_slot::count; ++slot) {
        const StringEntry* const entry = tables.program.find_or_null(string_slot::ids[slot]);
        detail::texts_by_slot[slot] = entry != nullptr ? entry->text() : std::u16string_view();
    }
}

void set_corrections_mode(bool on) noexcept
{
    tables.common.set_corrections_mode(on);
    tables.program.set_corrections_mode(on);
}

void correct_string(std::uint32_t id, std::u16string_view text)
{
    const bool is_common = tables.common.find_or_null(id) != nullptr;
    (is_common ? tables.common : tables.program).correct(key_of(id), text);
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
