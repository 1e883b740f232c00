"""What is wrong with a translation, for its translator."""

import re
from collections import Counter
from collections.abc import Iterator

import placeholders
from catalogue import Catalogue, Text, is_current, texts_of
from problem import Problem
from source import Entry

_MARKUP = re.compile(r"\[\[\[(?:s:\d+:|[a-z])?|\]\]\]")


def problems(catalogue: Catalogue, entries: list[Entry], dialogs: dict[str, list[list[str]]]) -> Iterator[str]:
    texts = texts_of(entries)
    for text in texts:
        for problem in _problems_of(catalogue, text):
            yield f"'{text.context}': {problem}"
    for context in catalogue.translations.keys() - {text.context for text in texts}:
        yield f"'{context}': stale, there is no such text any more"
    shown = {text.entry.name: catalogue.translated(text) or text.english for text in texts}
    yield from mnemonic_problems(shown, dialogs)


def _problems_of(catalogue: Catalogue, text: Text) -> Iterator[str]:
    translation = catalogue.translations.get(text.context)
    if translation is None or not translation.msgstr:
        yield "missing"
    elif not is_current(translation, text):
        yield "stale, made for another English text or revision"
    elif translation.fuzzy:
        yield "fuzzy, still to be looked at"
    else:
        yield from _faults(translation.msgstr, text.english)


def _faults(translated: str, english: str) -> Iterator[str]:
    try:
        difference = Counter(placeholders.found_in(translated))
    except Problem as problem:
        yield str(problem)
    else:
        difference.subtract(Counter(placeholders.found_in(english)))
        for placeholder, count in difference.items():
            if count != 0:
                yield f"the placeholder {placeholder} is {'missing' if count < 0 else 'not in the English text'}"
    if _MARKUP.findall(translated) != _MARKUP.findall(english):
        yield "the markup differs from that of the English text"
    if (mnemonic_of(translated) is None) != (mnemonic_of(english) is None):
        yield "a mnemonic is missing" if mnemonic_of(english) else "there is a mnemonic, and none in the English text"
    if translated.endswith("…") != english.endswith("…"):
        yield "the ellipsis at the end differs from the English text"
    if translated != translated.strip(" \t\n") and english == english.strip():
        yield "there is white space around the text"


def mnemonic_of(text: str) -> str | None:
    found = re.search(r"&(.)", text.replace("&&", ""))
    return found[1].upper() if found else None


def mnemonic_problems(shown: dict[str, str], dialogs: dict[str, list[list[str]]]) -> Iterator[str]:
    """One control may have one of several texts, which may share a letter; two controls may not."""
    for dialog, controls in dialogs.items():
        owners: dict[str, int] = {}
        for control, names in enumerate(controls):
            for name in names:
                mnemonic = mnemonic_of(shown[name])
                if mnemonic and owners.setdefault(mnemonic, control) != control:
                    yield f"two controls of the dialog '{dialog}' have the mnemonic {mnemonic}"
