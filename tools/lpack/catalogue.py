"""Translations as PO files.

Each text is an entry of its own whose context is the key of its string, with the position in brackets for an item of a
list. The last line of an entry's comment names the revision of the English text.
"""

import re
from dataclasses import dataclass, replace
from pathlib import Path

import polib

from problem import Problem
from source import Entry
from string_pack import Language

_REVISION = re.compile(r"^Revision: (\d+)$", re.MULTILINE)
_WIDTH = 110

_HEADER = {
    "Project-Id-Version": "tl_server_config",
    "Language": "",
    "X-Language-Name": "",
    "X-Locale-Name": "",
    "MIME-Version": "1.0",
    "Content-Type": "text/plain; charset=UTF-8",
    "Content-Transfer-Encoding": "8bit",
}


@dataclass(frozen=True)
class Text:
    """One English text: a single one, or an item of a list."""

    context: str
    entry: Entry
    english: str


def texts_of(entries: list[Entry]) -> list[Text]:
    return [
        Text(f"{entry.key}[{index}]" if entry.is_list else entry.key, entry, english)
        for entry in entries
        for index, english in enumerate(entry.texts)
        if english
    ]


def revision_of(translation: polib.POEntry) -> int:
    found = _REVISION.search(translation.comment)
    return int(found[1]) if found else 0


def is_current(translation: polib.POEntry, text: Text) -> bool:
    """Whether it was made for the present English text and revision."""
    return translation.msgid == text.english and revision_of(translation) == text.entry.revision


class Catalogue:
    def __init__(self, path: Path) -> None:
        self.path = path
        try:
            self.file = polib.pofile(str(path), encoding="utf-8", wrapwidth=_WIDTH)
        except (OSError, UnicodeDecodeError, polib.POFileError) as error:
            raise Problem(f"{path}: {error}") from None
        self.translations: dict[str, polib.POEntry] = {}
        for translation in self.file:
            if not translation.obsolete:
                if translation.msgctxt in self.translations:
                    raise Problem(f"{path}: the context '{translation.msgctxt}' is there twice")
                self.translations[translation.msgctxt] = translation

    def header(self, field: str) -> str:
        value = self.file.metadata.get(field, "")
        if not value:
            raise Problem(f"{self.path}: the header has no '{field}'")
        return value

    @property
    def locale(self) -> str:
        return self.header("Language").lower()

    @property
    def language_name(self) -> str:
        return self.header("X-Language-Name")

    @property
    def language(self) -> Language:
        return Language(self.header("X-Locale-Name"), self.locale)

    def translated(self, text: Text) -> str | None:
        """The finished translation of the present English text."""
        translation = self.translations.get(text.context)
        if translation is None or translation.fuzzy or not translation.msgstr or not is_current(translation, text):
            return None
        return translation.msgstr

    def translated_entries(self, entries: list[Entry]) -> list[Entry]:
        """The entries all of whose texts are translated, in the language."""
        result = []
        for entry in entries:
            by_text = {text.english: self.translated(text) for text in texts_of([entry])}
            texts = [by_text.get(english, "") for english in entry.texts]
            if None not in texts:
                result.append(replace(entry, texts=tuple(texts)))
        return result


def _entry_of(text: Text) -> polib.POEntry:
    lines = text.entry.comment.splitlines() + [f"Revision: {text.entry.revision}"]
    return polib.POEntry(msgctxt=text.context, msgid=text.english, comment="\n".join(lines))


def write_template(entries: list[Entry], path: Path) -> None:
    file = polib.POFile(wrapwidth=_WIDTH)
    file.metadata = dict(_HEADER)
    file.extend(_entry_of(text) for text in texts_of(entries))
    file.save(str(path))


def update(catalogue: Catalogue, template: Catalogue) -> None:
    """Makes the catalogue's entries those of the template, in its order. What was translated from another English text
    becomes fuzzy and keeps that text; what the template does not have any more becomes obsolete."""
    updated = polib.POFile(wrapwidth=_WIDTH)
    updated.metadata = catalogue.file.metadata
    updated.header = catalogue.file.header
    for wanted in template.file:
        translation = catalogue.translations.pop(wanted.msgctxt, None)
        if translation is None:
            translation = wanted
        elif translation.msgid != wanted.msgid or revision_of(translation) != revision_of(wanted):
            if translation.msgstr and not translation.fuzzy:
                translation.previous_msgid = translation.msgid
                translation.flags.append("fuzzy")
            translation.msgid = wanted.msgid
        translation.comment = wanted.comment
        updated.append(translation)
    for translation in catalogue.translations.values():
        translation.obsolete = bool(translation.msgstr)
    updated.extend(entry for entry in catalogue.file if entry.obsolete)
    updated.save(str(catalogue.path))
