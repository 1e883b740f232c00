"""The binary form of a string pack; docs/pack-format.md shows it by an example."""

import struct
from dataclasses import dataclass

from problem import Problem
from source import Entry

SIGNATURE = bytes.fromhex("792B13EFBB4FF743841A260C00FF9929")

_TEXT, _LIST = 0, 1


@dataclass(frozen=True)
class Language:
    locale_name: str  # the C runtime's, such as "DEU"
    tag: str  # such as "de"


ENGLISH = Language("ENU", "en")


def encode(entries: list[Entry], language: Language = ENGLISH) -> bytes:
    """A pack without signature. What is reserved is as long as moves the texts to even addresses."""
    pack = bytearray()
    for name in (language.locale_name.encode("ascii"), language.tag.encode("ascii")):
        pack += struct.pack("<H", len(name)) + name + b"\0"
    extra = bytes(2 + (len(pack) + 1) % 2)
    pack += struct.pack("<B", len(extra)) + extra
    pack += struct.pack("<I", len(entries))
    for entry in entries:
        pack += struct.pack("<II", entry.id, entry.revision << 2 | (_LIST if entry.is_list else _TEXT))
        if entry.is_list:
            pack += struct.pack("<I", len(entry.texts))
            for index, text in enumerate(entry.texts):
                pack += struct.pack("<I", index) + _counted(text)
        else:
            pack += _counted(entry.texts[0])
    return bytes(pack)


def _counted(text: str) -> bytes:
    encoded = text.encode("utf-16-le")
    return struct.pack("<H", len(encoded) // 2) + encoded + b"\0\0"


def describe(reader: "Reader") -> list[str]:
    """The pack that begins where the reader is, each line beginning with the offset of what it shows."""
    lines = []
    for what in ("locale name", "language tag"):
        at = reader.position
        name = reader.take(what, reader.number(what, "<H") + 1)[:-1].decode("latin-1")
        lines.append(line(at, f"{what} {_quoted(name)}"))
    at = reader.position
    extra = reader.take("extra", reader.number("extra", "<B"))
    lines.append(line(at, f"extra {extra.hex(' ')}"))
    at = reader.position
    count = reader.number("entry count", "<I")
    lines.append(line(at, f"{count} entries"))
    for _ in range(count):
        lines += _describe_entry(reader)
    return lines


def _describe_entry(reader: "Reader") -> list[str]:
    at = reader.position
    identifier = reader.number("id", "<I")
    kind_and_revision = reader.number("kind and revision", "<I")
    head = f"0x{identifier:08X} revision {kind_and_revision >> 2}"
    if kind_and_revision & 3 == _TEXT:
        return [line(at, f"{head} {_quoted(reader.text())}")]
    lines = [line(at, f"{head} list of {(count := reader.number('item count', '<I'))}")]
    for _ in range(count):
        at = reader.position
        index = reader.number("item index", "<I")
        lines.append(line(at, f"    {index} {_quoted(reader.text())}"))
    return lines


def line(offset: int, text: str) -> str:
    return f"{offset:06x}  {text}\n"


def _quoted(text: str) -> str:
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n").replace("\r", "\\r") + '"'


class Reader:
    """Takes a pack's parts off the front; raises Problem where it ends too early."""

    def __init__(self, data: bytes, position: int = 0) -> None:
        self._data = data
        self.position = position

    def at_end(self) -> bool:
        return self.position == len(self._data)

    def take(self, what: str, size: int) -> bytes:
        if size > len(self._data) - self.position:
            raise Problem(f"the pack ends inside the {what} at offset {self.position:06x}")
        self.position += size
        return self._data[self.position - size : self.position]

    def number(self, what: str, form: str) -> int:
        return struct.unpack(form, self.take(what, struct.calcsize(form)))[0]

    def text(self) -> str:
        units = self.number("length", "<H")
        return self.take("text", 2 * units + 2)[:-2].decode("utf-16-le", errors="backslashreplace")
