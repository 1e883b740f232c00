"""Runs the pack compiler on good and bad sources: lpack_test.py LPACK"""

import contextlib
import io
import runpy
import sys
import tempfile
import unittest
from pathlib import Path

LPACK = sys.argv.pop(1)
DATA = Path(__file__).parent / "data"


sys.path.insert(0, str(Path(LPACK).parent))
main = runpy.run_path(LPACK)["main"]


def entry(**fields) -> str:
    fields = {"module": '"common"', "name": '"ok"', "key": '"OK"', "comment": '"Button."'} | fields
    if "items" not in fields:
        fields.setdefault("text", '"OK"')
    return "[[string]]\n" + "".join(f"{name} = {value}\n" for name, value in fields.items() if value)


class LpackTestCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def lpack(self, *arguments):
        """Returns what the tool writes, and says as an error."""
        out, err = io.StringIO(), io.StringIO()
        with contextlib.redirect_stdout(out), contextlib.redirect_stderr(err):
            self.returncode = main([str(argument) for argument in arguments])
        return out.getvalue(), err.getvalue()

    def write(self, name, content):
        path = self.folder / name
        path.write_text(content, encoding="utf-8")
        return path

    def compile(self, source):
        return self.lpack("compile-builtin", self.write("english.toml", source), "--out", self.folder)[1]


class SourceTest(LpackTestCase):
    def test_dump_shows_what_was_compiled(self):
        source = "[values]\nsite = \"example\"\n" + entry(text='"@site@ \\"…\\"\\n😀"', revision=3)
        source += entry(name='"state"', key='"State"', id="0xFFFFFFFF", items='["on", "off"]')
        self.assertEqual(self.compile(source), "")
        self.assertEqual(self.lpack("dump", self.folder / "common.bin")[0], (DATA / "common.dump").read_text(encoding="utf-8"))

    def test_a_bad_source_names_the_place(self):
        error = self.compile(entry() + entry(name='"yes"', key='"ok"'))
        self.assertIn("english.toml:7: 'yes': the id 0x663437AF is taken by", error)
        self.assertEqual(self.returncode, 1)

    def test_checks_placeholders_as_the_program_reads_them(self):
        good = ("{}", "{{0}", "}", "{0}.{1w2arf0}", "{1ub016xp}", "{0w,3ear}", "{0f}}", "{2?<}@{1}{2?>}", "{t(%FT%T%z)}",
                "{0b0016X}", "{0sa}", "{0a}}", "{0w5,9}", "{0+c}")  # fmt: skip
        bad = ("{", "a{0", "{0 }", "{0x}", "{0?}", "{0t}", "{0t(%}", "{0t(%F}", "{0t(%F)", "{0f}", "{0saf}", "{0b116x}", "{0b16p2}", "{0d}",
               "{-1}")  # fmt: skip
        numbered = (entry(name=f'"n{n}"', key=f'"{n}"', text=f"'{text}'") for n, text in enumerate(good))
        self.assertEqual(self.compile("".join(numbered)), "")
        for text in bad:
            with self.subTest(text):
                self.assertIn("malformed placeholder", self.compile(entry(text=f"'{text}'")))


SOURCE = (DATA / "english.toml").read_text(encoding="utf-8")
GERMAN = {"Start": "&Starten", "Install": "In&stallieren", "Stop": "S&topp…", "About": "[[[bV {0}]]] {1w2}", "State[0]": "ein", "State[1]": "aus"}
HEADER = '"Language: de\\n"\n"X-Language-Name: Deutsch\\n"\n"X-Locale-Name: DEU\\n"\n'


class TranslationTest(LpackTestCase):
    def setUp(self):
        super().setUp()
        self.source = self.write("english.toml", SOURCE)
        self.po = self.folder / "de.po"

    def template(self, source=SOURCE):
        self.source.write_text(source, encoding="utf-8")
        self.assertEqual(self.lpack("template", "--source", self.source, "--out", self.folder / "english.pot"), ("", ""))
        return self.folder / "english.pot"

    def translate(self, texts=GERMAN):
        """Fills in the template as a translator would."""
        po = self.template().read_text(encoding="utf-8")
        po = po.replace('"Language: \\n"\n', "").replace('"X-Language-Name: \\n"\n', "").replace('"X-Locale-Name: \\n"\n', HEADER)
        for context, text in texts.items():
            before, after = po.split(f'msgctxt "{context}"\n')
            po = before + f'msgctxt "{context}"\n' + after.replace('msgstr ""', f'msgstr "{text}"', 1)
        self.po.write_text(po, encoding="utf-8")

    def check(self):
        return self.lpack("check", "--source", self.source, self.po)[0]

    def dump(self):
        out = self.folder / "packs"
        options = ("--out", out, "--version", "7.1.0.1604", "--program", "a.exe")
        self.assertEqual(self.lpack("compile", "--source", self.source, *options, self.po)[1], "")
        (pack,) = out.iterdir()
        return self.lpack("dump", pack)[0]

    def test_a_complete_translation_passes_and_becomes_a_pack(self):
        self.translate()
        self.assertEqual(self.check(), "")
        self.assertEqual(self.dump(), (DATA / "de.Deutsch.701001604.dump").read_text(encoding="utf-8"))

    def test_check_names_each_fault(self):
        for context, text, problem in (
            ("Start", "", "missing"),
            ("Start", "Starten", "a mnemonic is missing"),
            ("Start", "S&tarten", "two controls of the dialog 'main' have the mnemonic T"),
            ("Stop", "S&topp", "the ellipsis at the end differs"),
            ("Stop", "S&topp {0}…", "the placeholder {0} is not in the English text"),
            ("About", "[[[bV {0}]]]", "the placeholder {1w2} is missing"),
            ("About", "[[[bV {0}]]] {1w2", "malformed placeholder"),
            ("About", "V {0} {1w2}", "the markup differs"),
            ("State[0]", "&ein", "there is a mnemonic"),
        ):
            with self.subTest(text):
                self.translate(GERMAN | {context: text})
                self.assertIn(problem, self.check())
                self.assertEqual(self.returncode, 1)

    def test_changed_english_makes_fuzzy_and_is_left_out(self):
        self.translate()
        changed = SOURCE.replace('"S&top…"', '"H&alt…"').replace("revision = 2", "revision = 3").replace('name = "state"\nkey = "State"', 'name = "mode"\nkey = "Mode"')
        self.source.write_text(changed, encoding="utf-8")
        stale = self.check()
        for line in ("'Stop': stale", "'About': stale", "'Mode[0]': missing", "'State[0]': stale, there is no such text"):
            self.assertIn(line, stale)

        self.assertEqual(self.lpack("update", "--template", self.template(changed), self.po), ("", ""))
        po = self.po.read_text(encoding="utf-8")
        self.assertIn('#, fuzzy\n#| msgid "S&top…"\nmsgctxt "Stop"\nmsgid "H&alt…"\nmsgstr "S&topp…"\n', po)
        self.assertIn('#, fuzzy\n#| msgid "[[[bV {0}]]] {1w2}"\nmsgctxt "About"', po)
        self.assertIn('#~ msgctxt "State[0]"\n#~ msgid "on"\n#~ msgstr "ein"\n', po)
        self.assertIn(f"{self.po}: 'About': fuzzy, still to be looked at", self.check().splitlines())
        dump = self.dump()
        self.assertNotIn("topp", dump)
        self.assertIn("&Starten", dump)


    def test_merges_corrections(self):
        self.translate()
        self.lpack("update", "--template", self.template(SOURCE.replace('"S&top…"', '"H&alt…"')), self.po)
        xml = self.folder / "common.xml"
        xml.write_bytes(
            b'<?xml version="1.0" encoding="utf-8"?>\r\n<Corrections>\r\n  <Module name="common">\r\n'
            b'    <String id="Stop" value="&amp;A \\n <b> &amp;quot;\xc3\xa9&amp;quot;\xe2\x80\xa6"/>\r\n'
            b'    <String id="Nothing" value="x"/>\r\n  </Module>\r\n</Corrections>\r\n'
        )
        self.assertIn("has no 'Nothing'", self.lpack("merge-corrections", "--po", self.po, xml)[1])
        self.assertIn('"&A \\n <b> \\"é\\"…"', self.dump())


unittest.main()
