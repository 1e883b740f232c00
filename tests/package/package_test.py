#!/usr/bin/env python3
"""Makes the release twice and looks at it: package_test.py VERSION PROGRAM LANGUAGES"""

import html
import re
import subprocess
import sys
import tempfile
import tomllib
import unittest
import zipfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
VERSION, PROGRAM, LANGUAGES = sys.argv[1:]
ENGLISH = tomllib.loads((ROOT / "resources/strings/english.toml").read_text(encoding="utf-8"))["string"]
GUIDE = (ROOT / "docs/administrators-guide.md").read_text(encoding="utf-8")

# The system's own name for a right, which the guide quotes.
SYSTEM_TEXTS = {"Full Control"}


def plain(text: str) -> str:
    """As it is seen: no mnemonics."""
    return text.replace("&", "")


def package(out: Path) -> bytes:
    subprocess.run(
        ["/usr/bin/python3", "-B", ROOT / "tools/package/make_package.py", "--program", PROGRAM]
        + ["--languages", LANGUAGES, "--commit-time", "1750856589", "--out", out],
        check=True,
    )
    return out.read_bytes()


class PackageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls) -> None:
        cls.folder = tempfile.TemporaryDirectory()
        cls.path = Path(cls.folder.name, "one.zip")
        cls.content = package(cls.path)
        cls.package = zipfile.ZipFile(cls.path)

    @classmethod
    def tearDownClass(cls) -> None:
        cls.package.close()
        cls.folder.cleanup()

    def test_equal_inputs_give_equal_files(self) -> None:
        self.assertEqual(package(Path(self.folder.name, "two.zip")), self.content)

    def test_it_has_all_that_an_administrator_needs_and_no_more(self) -> None:
        names = set(self.package.namelist())
        translations = {path.stem for path in (ROOT / "languages").glob("*.po")}
        packs = {name.split("/")[1].split(".")[0] for name in names if name.startswith("languages/")}
        self.assertEqual(packs, translations)
        rest = {name for name in names if not name.startswith("languages/")}
        self.assertEqual(
            rest,
            {"tl_server_config.exe", "administrators-guide.html", "registry-reference.html"}
            | {"pictures/main-window.png", "pictures/please-wait.png"}
            | {f"licences/{name}.txt" for name in ("boost", "gcc-runtime-libraries", "mingw-w64")},
        )

    def test_what_its_pages_link_to_is_in_it(self) -> None:
        for page in ("administrators-guide.html", "registry-reference.html"):
            text = self.package.read(page).decode()
            for target in re.findall(r'(?:href|src)="([^"]+)"', text):
                self.assertIn(html.unescape(target), self.package.namelist(), page)

    def test_licences_are_whole_texts(self) -> None:
        for name, words in {
            "boost": "Boost Software License - Version 1.0",
            "gcc-runtime-libraries": "GCC RUNTIME LIBRARY EXCEPTION",
            "mingw-w64": "winpthreads",
        }.items():
            self.assertIn(words, self.package.read(f"licences/{name}.txt").decode())


class GuideTest(unittest.TestCase):
    def test_quoted_texts_are_those_of_the_program(self) -> None:
        shown = {plain(entry["text"]) for entry in ENGLISH if "text" in entry}
        shown |= {plain(item) for entry in ENGLISH for item in entry.get("items", [])}
        for quoted in re.findall(r'"([^"\n]+)"', GUIDE):
            candidates = {quoted, quoted.removesuffix(":")}
            found = candidates & (shown | SYSTEM_TEXTS) or [text for text in shown if text.endswith(quoted)]
            self.assertTrue(found, quoted)

    def test_the_states_of_the_service_are_those_of_the_program(self) -> None:
        states = next(entry["items"] for entry in ENGLISH if entry["name"] == "service_status")
        table = GUIDE.split("| status |")[1].split("\n\n")[0]
        told = re.findall(r"^\| ([A-Z][^|]*?) \|", table, re.M)
        self.assertEqual(set(told), {state for state in states if state != "Unknown"})

    def test_the_key_is_that_of_this_version(self) -> None:
        major, minor = VERSION.split(".")[:2]
        self.assertIn(f"\\Zelmark\\Tidelink Server {major}.{int(minor):02}\n", GUIDE)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
