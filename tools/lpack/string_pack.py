"""The binary form of a built-in string pack; docs/pack-format.md shows it by an example."""

import struct

from problem import Problem
from source import Entry

SIGNATURE = bytes.fromhex("792B13EFBB4FF743841A260C00FF9929")
LOCALE_NAME = b"ENU"
LANGUAGE_TAG = b"en"
EXTRA = b"\0\0"

_TEXT, _LIST = 0, 1


def encode(entries: list[Entry]) -> bytes:
    pack = bytearray(SIGNATURE)
    for name in (LOCALE_NAME, LANGUAGE_TAG):
        pack += struct.pack("<H", len(name)) + name + b"\0"
    pack += struct.pack("<B", len(EXTRA)) + EXTRA
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


def describe(pack: bytes) -> str:
    """The pack as text, each line beginning with the offset of what it shows."""
    reader = _Reader(pack)
    if reader.take("signature", 16) != SIGNATURE:
        raise Problem("not a built-in string pack: another signature")
    lines = [_line(0, "signature")]
    for what in ("locale name", "language tag"):
        at = reader.position
        name = reader.take(what, reader.number(what, "<H") + 1)[:-1].decode("latin-1")
        lines.append(_line(at, f"{what} {_quoted(name)}"))
    at = reader.position
    extra = reader.take("extra", reader.number("extra", "<B"))
    lines.append(_line(at, f"extra {extra.hex(' ')}"))
    at = reader.position
    count = reader.number("entry count", "<I")
    lines.append(_line(at, f"{count} entries"))
    for _ in range(count):
        lines += _describe_entry(reader)
    lines.append(_line(reader.position, "end"))
    if reader.position != len(pack):
        raise Problem(f"{len(pack) - reader.position} bytes follow the last entry")
    return "".join(lines)


def _describe_entry(reader: "_Reader") -> list[str]:
    at = reader.position
    identifier = reader.number("id", "<I")
    kind_and_revision = reader.number("kind and revision", "<I")
    head = f"0x{identifier:08X} revision {kind_and_revision >> 2}"
    if kind_and_revision & 3 == _TEXT:
        return [_line(at, f"{head} {_quoted(reader.text())}")]
    lines = [_line(at, f"{head} list of {(count := reader.number('item count', '<I'))}")]
    for _ in range(count):
        at = reader.position
        index = reader.number("item index", "<I")
        lines.append(_line(at, f"    {index} {_quoted(reader.text())}"))
    return lines


def _line(offset: int, text: str) -> str:
    return f"{offset:06x}  {text}\n"


def _quoted(text: str) -> str:
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"').replace("\n", "\\n").replace("\r", "\\r") + '"'


class _Reader:
    def __init__(self, data: bytes) -> None:
        self._data = data
        self.position = 0

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
