"""Reads and checks the English source."""

import re
import tomllib
from dataclasses import dataclass
from pathlib import Path

import placeholders
from name_hash import name_hash, utf16_units
from problem import Problem

MODULES = ("program", "common")

MAX_TEXT_UNITS = 0xFFFF
MAX_ITEMS = 1024
MAX_REVISION = (1 << 30) - 1

_FIELDS = {"module", "name", "key", "id", "revision", "text", "items", "comment"}
_REQUIRED = ("module", "name", "key", "comment")
_NAME = re.compile(r"[a-z][a-z0-9]*(?:_[a-z0-9]+)*_?")
_KEYWORDS = set(
    """alignas alignof and and_eq asm auto bitand bitor bool break case catch char char16_t char32_t char8_t class co_await
    co_return co_yield compl concept const const_cast consteval constexpr constinit continue decltype default delete do
    double dynamic_cast else enum explicit export extern false float for friend goto if inline int long mutable namespace
    new noexcept not not_eq nullptr operator or or_eq private protected public register reinterpret_cast requires return
    short signed sizeof static static_assert static_cast struct switch template this thread_local throw true try typedef
    typeid typename union unsigned using virtual void volatile wchar_t while xor xor_eq""".split()
)


@dataclass(frozen=True)
class Entry:
    module: str
    name: str
    key: str
    id: int
    id_follows_key: bool
    revision: int
    texts: tuple[str, ...]  # one, or the items of a list
    is_list: bool
    comment: str


@dataclass(frozen=True)
class Source:
    entries: list[Entry]
    # By dialog the names of the texts that are seen together: for each control those that it may have.
    dialogs: dict[str, list[list[str]]]


def read(path: Path) -> Source:
    """The entries in their order. Raises Problem, whose text begins with the file and, where known, the line."""
    source = path.read_text(encoding="utf-8")
    try:
        document = tomllib.loads(source)
    except tomllib.TOMLDecodeError as error:
        raise Problem(f"{path}: {error}") from None

    unknown = sorted(document.keys() - {"values", "dialogs", "string"})
    if unknown:
        raise Problem(f"{path}: unknown table '{unknown[0]}'")
    tables = document.get("string", [])
    lines = _lines_of_tables(source, len(tables))
    places = []
    entries = []
    for table, line in zip(tables, lines):
        place = f"{path}:{line}: '{table.get('name', '?')}'"
        try:
            entries.append(_entry(table, document.get("values", {})))
        except Problem as problem:
            raise Problem(f"{place}: {problem}") from None
        places.append(place)
    _check_unique(entries, places)
    try:
        dialogs = _dialogs(document.get("dialogs", {}), {entry.name for entry in entries if not entry.is_list})
    except Problem as problem:
        raise Problem(f"{path}: {problem}") from None
    return Source(entries, dialogs)


def _dialogs(tables: dict, names: set[str]) -> dict[str, list[list[str]]]:
    dialogs = {}
    for dialog, controls in tables.items():
        dialogs[dialog] = [control if isinstance(control, list) else [control] for control in controls]
        for name in (name for control in dialogs[dialog] for name in control):
            if name not in names:
                raise Problem(f"dialog '{dialog}': there is no text '{name}'")
    return dialogs


def _lines_of_tables(source: str, count: int) -> list[int]:
    """The line of each [[string]]; the parser does not tell."""
    lines = [number for number, line in enumerate(source.splitlines(), 1) if line.strip() == "[[string]]"]
    return lines if len(lines) == count else [1] * count


def _entry(table: dict, values: dict) -> Entry:
    unknown = sorted(table.keys() - _FIELDS)
    if unknown:
        raise Problem(f"unknown field '{unknown[0]}'")
    for field in _REQUIRED:
        if not isinstance(table.get(field), str) or not table[field].strip():
            raise Problem(f"'{field}' must be a text that is not empty")
    if table["module"] not in MODULES:
        raise Problem(f"unknown module '{table['module']}'")
    if not _NAME.fullmatch(table["name"]) or table["name"] in _KEYWORDS:
        raise Problem("the name cannot be a constant: small letters, digits and single underscores, no C++ keyword")

    if ("text" in table) == ("items" in table):
        raise Problem("either 'text' or 'items' is needed")
    texts = table["items"] if "items" in table else [table["text"]]
    if not isinstance(texts, list) or not all(isinstance(text, str) for text in texts):
        raise Problem("'text' must be a text and 'items' a list of texts")
    if len(texts) > MAX_ITEMS:
        raise Problem(f"there are more than {MAX_ITEMS} items")

    return Entry(
        module=table["module"],
        name=table["name"],
        key=table["key"],
        id=_number(table, "id", name_hash(table["key"]), 0xFFFFFFFF),
        id_follows_key="id" not in table,
        revision=_number(table, "revision", 0, MAX_REVISION),
        texts=tuple(_text(text, values) for text in texts),
        is_list="items" in table,
        comment=table["comment"].strip(),
    )


def _number(table: dict, field: str, default: int, largest: int) -> int:
    value = table.get(field, default)
    if type(value) is not int or not 0 <= value <= largest:
        raise Problem(f"'{field}' must be a number from 0 to {largest}")
    return value


def _text(text: str, values: dict) -> str:
    def value(match: re.Match) -> str:
        if not isinstance(values.get(match[1]), str):
            raise Problem(f"no text '{match[1]}' in [values]")
        return values[match[1]]

    text = re.sub(r"@([a-z_]+)@", value, text)
    if len(utf16_units(text)) > MAX_TEXT_UNITS:
        raise Problem(f"the text is longer than {MAX_TEXT_UNITS} UTF-16 code units")
    if "\0" in text:
        raise Problem("the text contains a null character")
    placeholders.found_in(text)
    return text


def _check_unique(entries: list[Entry], places: list[str]) -> None:
    """Over both modules: a lookup in one goes on in the other."""
    for what, value in (("name", lambda e: e.name), ("key", lambda e: e.key), ("id", lambda e: f"0x{e.id:08X}")):
        owners: dict[str, str] = {}
        for entry, place in zip(entries, places):
            if value(entry) in owners:
                raise Problem(f"{place}: the {what} {value(entry)} is taken by {owners[value(entry)]}")
            owners[value(entry)] = place
