"""What the C++ code sees of the texts."""

from name_hash import utf16_units
from source import Entry

_IDS = """\
// Written by tools/lpack from the English source: do not edit.
#pragma once

#include <cstddef>
#include <cstdint>

/// The ids of the program's texts.
namespace tidelink::string_id {{

{constants}
}} // namespace tidelink::string_id

/// A dense numbering of these ids.
namespace tidelink::string_slot {{

inline constexpr std::size_t count = {count};

inline constexpr std::uint32_t ids[count] = {{
{ids}
}};

/// The position of an id in `ids`, known while compiling where the id is; `count` for any other number.
constexpr std::size_t of(std::uint32_t id) noexcept
{{
    switch (id) {{
{cases}
    default:
        return count;
    }}
}}

}} // namespace tidelink::string_slot
"""


def ids(entries: list[Entry]) -> str:
    return _IDS.format(
        constants="\n".join(
            f"/// {_first_line(entry)}\ninline constexpr std::uint32_t {entry.name} = 0x{entry.id:08X};" for entry in entries
        ),
        count=len(entries),
        ids="\n".join(f"    string_id::{entry.name}," for entry in entries),
        cases="\n".join(f"    case string_id::{entry.name}:\n        return {slot};" for slot, entry in enumerate(entries)),
    )


def keys(entries: list[Entry]) -> str:
    """STRING_KEY(name, key) for each id that follows from its key, STRING_WITH_OWN_ID(name, key) for the others."""
    return "".join(
        f"{'STRING_KEY' if entry.id_follows_key else 'STRING_WITH_OWN_ID'}({entry.name}, {_literal(entry.key)})\n"
        for entry in entries
    )


def _first_line(entry: Entry) -> str:
    first = entry.texts[0].splitlines()[0] if entry.texts and entry.texts[0] else ""
    return f'"{first}" and its alternatives' if entry.is_list else f'"{first}"'


def _literal(text: str) -> str:
    characters = (chr(unit) if 0x20 <= unit < 0x7F and unit not in b'"\\' else f"\\x{unit:04x}\" u\"" for unit in utf16_units(text))
    return 'u"' + "".join(characters) + '"'
