"""A language for tests: English, readable, 40 % longer and with an accent on every vowel. What stays plain in a window
was not translated; what is cut off there does not fit."""

import re
from dataclasses import replace

import placeholders
from source import Entry
from string_pack import Language

LOCALE = "qps-ploc"
LANGUAGE_NAME = "[Pšëüdö]"
LANGUAGE = Language("ENU", LOCALE)

_ACCENTS = str.maketrans("AEIOUYaeiouycnsz", "ÅËÏÖÜÝåëïöüýçñšž")
# What must stay: placeholders, the beginning of a markup with its address, its end, a mnemonic.
_FIXED = re.compile(rf"({placeholders.PLACEHOLDER.pattern}|\[\[\[h[^\]]*|\[\[\[(?:s:[0-9]+:|[a-z])?|\]\]\]|&.)", re.VERBOSE | re.DOTALL)


def translated(entries: list[Entry]) -> list[Entry]:
    return [replace(entry, texts=tuple(_longer(text) for text in entry.texts)) for entry in entries]


def _longer(text: str) -> str:
    parts = _FIXED.split(text)
    accented = "".join(part if index % 2 else part.translate(_ACCENTS) for index, part in enumerate(parts))
    extra = -(-2 * sum(len(part) for part in parts[::2]) // 5)
    return accented + (" ëïöü" * extra)[:extra].rstrip()
