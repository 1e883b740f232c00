"""The corrections that a translator made while the program was running, into the PO file.

The program writes them one to a line and leaves angle brackets as they are, so they are read line by line.
"""

import re
from pathlib import Path

from catalogue import Catalogue
from problem import Problem

_HEADER = '<?xml version="1.0" encoding="utf-8"?>\n<Corrections>\n'
_CORRECTION = re.compile(r'^    <String id="([^"]*)" value="([^"]*)"/>$')
_ESCAPES = (("&amp;", "&"), ("\\t", "\t"), ("\\n", "\n"), ("\\r", "\r"), ("&quot;", '"'))


def read(path: Path) -> dict[str, str]:
    """The corrected texts by the keys of their strings."""
    lines = path.read_text(encoding="utf-8")  # line ends become "\n"
    if not lines.startswith(_HEADER):
        raise Problem(f"{path}: not a file of corrections")
    found = (_CORRECTION.match(line) for line in lines.splitlines())
    return {_plain(match[1]): _plain(match[2]) for match in found if match}


def _plain(escaped: str) -> str:
    for escape, character in _ESCAPES:
        escaped = escaped.replace(escape, character)
    return escaped


def merge(corrections: dict[str, str], catalogue: Catalogue) -> list[str]:
    """Replaces the translations and saves them. Returns the keys that the catalogue does not have."""
    unknown = []
    for key, text in corrections.items():
        if (translation := catalogue.translations.get(key)) is None:
            unknown.append(key)
            continue
        translation.msgstr = text
        translation.previous_msgid = None
        if translation.fuzzy:
            translation.flags.remove("fuzzy")
    catalogue.file.save(str(catalogue.path))
    return unknown
