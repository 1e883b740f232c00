"""Whole files: the resource of a built-in pack, and a language pack with its modules."""

import re
import struct

import string_pack
from name_hash import name_hash
from problem import Problem
from string_pack import Reader, line

SIGNATURE = bytes.fromhex("915827FD72A1C14C8ABA564EFC98DD21")


def encode(modules: dict[str, bytes]) -> bytes:
    """A language pack of the string packs of its modules."""
    directory = sorted((name_hash(name), pack) for name, pack in modules.items())
    offset = len(SIGNATURE) + 4 + 8 * len(directory)
    file = bytearray(SIGNATURE + struct.pack("<I", len(directory)))
    for module_hash, pack in directory:
        file += struct.pack("<Ii", module_hash, offset)
        offset += len(pack)
    for _, pack in directory:
        file += pack
    return bytes(file)


def name(locale: str, language_name: str, version: str) -> str:
    """Such as de.Deutsch.701001604.lpack for the version 7.1.0.1604."""
    parts = re.fullmatch(r"(\d+)\.(\d{1,2})\.(\d{1,2})\.(\d{1,4})", version)
    if parts is None:
        raise Problem(f"the version {version} is not of the form 7.1.0.1604")
    for part in (locale, language_name):
        if not part or re.search(r'[.\\/:*?"<>|]', part):
            raise Problem(f"'{part}' cannot be a part of a file name")
    major, minor, revision, build = map(int, parts.groups())
    return f"{locale}.{language_name}.{((major * 100 + minor) * 100 + revision) * 10000 + build}.lpack"


def describe(file: bytes) -> str:
    if file.startswith(string_pack.SIGNATURE):
        reader = Reader(file, len(string_pack.SIGNATURE))
        lines = [line(0, "signature"), *string_pack.describe(reader), line(reader.position, "end")]
        if not reader.at_end():
            raise Problem(f"{len(file) - reader.position} bytes follow the last entry")
        return "".join(lines)
    if file.startswith(SIGNATURE):
        return _describe_language_pack(file)
    raise Problem("neither a built-in string pack nor a language pack: another signature")


def _describe_language_pack(file: bytes) -> str:
    reader = Reader(file, len(SIGNATURE))
    count = reader.number("module count", "<I")
    lines = [line(0, "signature of a language pack"), line(len(SIGNATURE), f"{count} modules")]
    offsets = []
    for _ in range(count):
        at = reader.position
        module_hash, offset = struct.unpack("<Ii", reader.take("directory", 8))
        lines.append(line(at, f"module 0x{module_hash:08X} at {offset:06x}"))
        offsets.append(offset)
    for offset in offsets:
        if not 0 <= offset <= len(file):
            raise Problem(f"a module begins at {offset}, outside of the file")
        module = Reader(file, offset)
        lines += string_pack.describe(module)
        lines.append(line(module.position, "end of the module"))
    return "".join(lines)
