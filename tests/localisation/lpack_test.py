"""Runs the pack compiler on good and bad sources: lpack_test.py LPACK"""

import contextlib
import importlib.machinery
import importlib.util
import io
import sys
import tempfile
import types
import unittest
from pathlib import Path

LPACK = sys.argv.pop(1)
OUTPUTS = ("common.bin", "program.bin", "string_ids.h", "string_keys.inc")


def load_lpack() -> types.ModuleType:
    sys.path.insert(0, str(Path(LPACK).parent))
    loader = importlib.machinery.SourceFileLoader("lpack", LPACK)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("lpack", loader))
    loader.exec_module(module)
    return module


lpack = load_lpack()
name_hash = sys.modules["name_hash"].name_hash


def entry(**fields) -> str:
    fields = {"module": '"common"', "name": '"ok"', "key": '"OK"', "comment": '"Button."'} | fields
    if "items" not in fields:
        fields.setdefault("text", '"OK"')
    return "[[string]]\n" + "".join(f"{name} = {value}\n" for name, value in fields.items() if value)


class Result:
    def __init__(self, arguments):
        out, err = io.StringIO(), io.StringIO()
        with contextlib.redirect_stdout(out), contextlib.redirect_stderr(err):
            self.returncode = lpack.main([str(argument) for argument in arguments])
        self.stdout, self.stderr = out.getvalue(), err.getvalue()


class LpackTestCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def run_lpack(self, *arguments):
        return Result(arguments)

    def write(self, name, content):
        path = self.folder / name
        path.write_text(content, encoding="utf-8")
        return path

    def compile(self, source, out="out"):
        return self.run_lpack("compile-builtin", self.write("english.toml", source), "--out", self.folder / out)

    def dump(self, pack):
        result = self.run_lpack("dump", pack)
        return result.stdout if result.returncode == 0 else result.stderr


class SourceTest(LpackTestCase):
    def test_equal_sources_give_equal_bytes(self):
        source = entry() + entry(name='"no"', key='"No"', module='"program"')
        for out in ("first", "second"):
            self.assertEqual(self.compile(source, out).returncode, 0)
        for name in OUTPUTS:
            self.assertEqual((self.folder / "first" / name).read_bytes(), (self.folder / "second" / name).read_bytes())

    def test_dump_shows_what_was_compiled(self):
        source = "[values]\nsite = \"example\"\n" + entry(text='"@site@ \\"…\\"\\n😀"', revision=3)
        source += entry(name='"state"', key='"State"', id="0xFFFFFFFF", items='["on", "off"]')
        self.assertEqual(self.compile(source).stderr, "")
        self.assertEqual(
            self.dump(self.folder / "out" / "common.bin").splitlines()[1:],
            [
                '000010  locale name "ENU"',
                '000016  language tag "en"',
                "00001b  extra 00 00",
                "00001e  2 entries",
                '000022  0x663437AF revision 3 "example \\"…\\"\\n😀"',
                "00004a  0xFFFFFFFF revision 0 list of 2",
                '000056      0 "on"',
                '000062      1 "off"',
                "000070  end",
            ],
        )

    def test_dump_refuses_damaged_packs(self):
        self.compile(entry())
        pack = (self.folder / "out" / "common.bin").read_bytes()
        damaged = self.folder / "damaged.bin"
        for content, problem in (
            (pack[:-1], "ends inside the text"),
            (pack + b"x", "1 bytes follow"),
            (b"x" + pack[1:], "another signature"),
        ):
            damaged.write_bytes(content)
            self.assertIn(problem, self.dump(damaged))

    def test_bad_sources_name_the_place(self):
        other = entry(name='"yes"', key='"Yes"')
        for name, source, problem in (
            ("syntax", "[[string]\n", "line 1"),
            ("unknown table", "[strings]\n", "unknown table 'strings'"),
            ("unknown field", other + entry(colour='"red"'), ":7: 'ok': unknown field 'colour'"),
            ("no comment", entry(comment='""'), "'comment' must be a text"),
            ("no key", entry(key=None), "'key' must be a text"),
            ("unknown module", entry(module='"other"'), "unknown module 'other'"),
            ("name that is no constant", entry(name='"Not OK"'), "cannot be a constant"),
            ("name that is a keyword", entry(name='"delete"'), "cannot be a constant"),
            ("text and items", entry(text='"x"', items='["x"]'), "either 'text' or 'items'"),
            ("neither text nor items", entry(text=None), "either 'text' or 'items'"),
            ("item that is no text", entry(items="[1]"), "'items' a list of texts"),
            ("revision of 31 bits", entry(revision=1 << 30), "'revision' must be a number"),
            ("boolean revision", entry(revision="true"), "'revision' must be a number"),
            ("negative id", entry(id=-1), "'id' must be a number"),
            ("text of 65,536 units", entry(text='"' + "x" * 65534 + '😀"'), "longer than 65535"),
            ("null in a text", entry(text='"\\u0000"'), "null character"),
            ("unknown value", entry(text='"@nothing@"'), "no text 'nothing'"),
            ("unknown text in a dialog", '[dialogs]\nmain = ["yes"]\n' + entry(), "there is no text 'yes'"),
            ("two equal mnemonics", '[dialogs]\nmain = ["ok", "yes"]\n' + entry(text='"&OK"')
             + entry(name='"yes"', key='"Yes"', text='"Y&o"'), "have the mnemonic O"),
            ("same name", entry() + entry(key='"Other"'), ":7: 'ok': the name ok is taken by"),
            ("same key", entry() + entry(name='"yes"'), ":7: 'yes': the key OK is taken by"),
            ("same key in the other module", entry() + entry(name='"yes"', module='"program"'), "the key OK is taken by"),
            ("keys that differ in case", entry() + entry(name='"yes"', key='"ok"'), "the id 0x663437AF is taken by"),
            ("id of another key", other + entry(name='"no"', key='"No"', id="0x4E9F3590"), "the id 0x4E9F3590 is taken by"),
        ):
            with self.subTest(name):
                result = self.compile(source)
                self.assertEqual(result.returncode, 1)
                self.assertIn("english.toml:", result.stderr)
                self.assertIn(problem, result.stderr)
                self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)

    def test_checks_placeholders_as_the_program_reads_them(self):
        good = ("{}", "{{0}", "}", "{0}.{1w2arf0}", "{1ub016xp}", "{0w,3ear}", "{0f}}", "{2?<}@{1}{2?>}", "{t(%FT%T%z)}",
                "{0b0016X}", "{0sa}", "{0a}}", "{0w5,9}", "{0+c}")  # fmt: skip
        bad = ("{", "a{0", "{0 }", "{0x}", "{0?}", "{0t}", "{0t(%}", "{0t(%F}", "{0t(%F)", "{0f}", "{0saf}", "{0b116x}", "{0b16p2}", "{0d}",
               "{-1}")  # fmt: skip
        numbered = (entry(name=f'"n{n}"', key=f'"{n}"', text=f"'{text}'") for n, text in enumerate(good))
        self.assertEqual(self.compile("".join(numbered)).stderr, "")
        for text in bad:
            with self.subTest(text):
                self.assertIn("malformed placeholder", self.compile(entry(text=f"'{text}'")).stderr)


SOURCE = '[dialogs]\nmain = [["start", "install"], "stop"]\n' + "".join(
    (
        entry(name='"start"', key='"Start"', text='"&Start"'),
        entry(name='"install"', key='"Install"', text='"&Install"'),
        entry(name='"stop"', key='"Stop"', text='"S&top…"', comment='"Button.\\nIt stops."'),
        entry(name='"version"', key='"About"', text='"[[[bV {0}]]] {1w2}"', module='"program"', revision=2),
        entry(name='"state"', key='"State"', items='["on", "off"]'),
    )
)
GERMAN = {"Start": "&Starten", "Install": "In&stallieren", "Stop": "S&topp…", "About": "[[[bV {0}]]] {1w2}", "State[0]": "ein", "State[1]": "aus"}
HEADER = '"Language: de\\n"\n"X-Language-Name: Deutsch\\n"\n"X-Locale-Name: DEU\\n"\n'


class TranslationTest(LpackTestCase):
    def setUp(self):
        super().setUp()
        self.source = self.write("english.toml", SOURCE)
        self.po = self.folder / "de.po"

    def template(self, source=SOURCE):
        self.source.write_text(source, encoding="utf-8")
        path = self.folder / "english.pot"
        self.assertEqual(self.run_lpack("template", "--source", self.source, "--out", path).returncode, 0)
        return path

    def translate(self, texts=GERMAN):
        """Fills in the template as a translator would."""
        po = self.template().read_text(encoding="utf-8")
        po = po.replace('"Language: \\n"\n', "").replace('"X-Language-Name: \\n"\n', "").replace('"X-Locale-Name: \\n"\n', HEADER)
        for context, text in texts.items():
            before, after = po.split(f'msgctxt "{context}"\n')
            po = before + f'msgctxt "{context}"\n' + after.replace('msgstr ""', f'msgstr "{text}"', 1)
        self.po.write_text(po, encoding="utf-8")

    def check(self):
        return self.run_lpack("check", "--source", self.source, self.po)

    def packs(self, *options):
        out = self.folder / "packs"
        result = self.run_lpack("compile", "--source", self.source, "--out", out, "--version", "7.1.0.1604", *options)
        self.assertEqual(result.stderr, "")
        return {path.name: path for path in out.iterdir()}

    def test_template_has_context_comment_and_revision(self):
        pot = self.template().read_text(encoding="utf-8")
        self.assertIn('#. Button.\n#. It stops.\n#. Revision: 0\nmsgctxt "Stop"\nmsgid "S&top…"\nmsgstr ""\n', pot)
        self.assertIn('#. Revision: 2\nmsgctxt "About"\n', pot)
        self.assertIn('msgctxt "State[1]"\nmsgid "off"\n', pot)

    def test_a_complete_translation_passes_and_becomes_a_pack(self):
        self.translate()
        self.assertEqual(self.check().stdout, "")
        pack = self.packs("--program", "a.exe", self.po)["de.Deutsch.701001604.lpack"]
        shown = [line[8:] for line in self.dump(pack).splitlines()]
        self.assertEqual(
            shown,
            [
                "signature of a language pack",
                "2 modules",
                f"module 0x{name_hash('common'):08X} at 000024",
                f"module 0x{name_hash('a.exe'):08X} at 0000ba",
                'locale name "DEU"',
                'language tag "de"',
                "extra 00 00",
                "4 entries",
                f'0x{name_hash("Start"):08X} revision 0 "&Starten"',
                f'0x{name_hash("Install"):08X} revision 0 "In&stallieren"',
                f'0x{name_hash("Stop"):08X} revision 0 "S&topp…"',
                f'0x{name_hash("State"):08X} revision 0 list of 2',
                '    0 "ein"',
                '    1 "aus"',
                "end of the module",
                'locale name "DEU"',
                'language tag "de"',
                "extra 00 00",
                "1 entries",
                f'0x{name_hash("About"):08X} revision 2 "[[[bV {{0}}]]] {{1w2}}"',
                "end of the module",
            ],
        )

    def test_equal_translations_give_equal_packs_and_others_are_removed(self):
        self.translate()
        first = {name: path.read_bytes() for name, path in self.packs(self.po, "--pseudo").items()}
        (self.folder / "packs" / "xx.Old.1.lpack").touch()
        second = {name: path.read_bytes() for name, path in self.packs(self.po, "--pseudo").items()}
        self.assertEqual(first, second)
        self.assertEqual(len(first), 2)

    def test_every_text_of_every_pack_is_at_an_even_address(self):
        self.translate()
        for tag in ("de", "fil", "pt-br"):
            self.po.write_text(self.po.read_text(encoding="utf-8").replace("Language: de", f"Language: {tag}"), encoding="utf-8")
            (pack,) = self.packs(self.po).values()
            for line in self.dump(pack).splitlines():
                if '"' in line and "name" not in line and "tag" not in line:
                    self.assertEqual(int(line[:6], 16) % 2, 0, line)

    def test_check_names_each_fault(self):
        for context, text, problem in (
            ("Start", "", "missing"),
            ("Start", "Starten", "a mnemonic is missing"),
            ("Start", "S&tarten", "two controls of the dialog 'main' have the mnemonic T"),
            ("Stop", "S&topp", "the ellipsis at the end differs"),
            ("Stop", "S&topp {0}…", "the placeholder {0} is not in the English text"),
            ("About", "[[[bV {0}]]]", "the placeholder {1w2} is missing"),
            ("About", "[[[bV {0}]]] {1w3}", "the placeholder {1w2} is missing"),
            ("About", "[[[bV {0}]]] {1w2", "malformed placeholder"),
            ("About", "V {0} {1w2}", "the markup differs"),
            ("State[0]", " ein", "white space around"),
            ("State[0]", "&ein", "there is a mnemonic"),
        ):
            with self.subTest(text):
                self.translate(GERMAN | {context: text})
                result = self.check()
                self.assertEqual(result.returncode, 1)
                self.assertIn(problem, result.stdout)

    def test_changed_english_makes_fuzzy_and_is_left_out(self):
        self.translate()
        changed = SOURCE.replace('"S&top…"', '"H&alt…"').replace("revision = 2", "revision = 3").replace('name = "state"\nkey = "State"', 'name = "mode"\nkey = "Mode"')
        self.source.write_text(changed, encoding="utf-8")
        stale = self.check().stdout
        for line in ("'Stop': stale", "'About': stale", "'Mode[0]': missing", "'State[0]': stale, there is no such text"):
            self.assertIn(line, stale)

        self.assertEqual(self.run_lpack("update", "--template", self.template(changed), self.po).stderr, "")
        po = self.po.read_text(encoding="utf-8")
        self.assertIn('#, fuzzy\n#| msgid "S&top…"\nmsgctxt "Stop"\nmsgid "H&alt…"\nmsgstr "S&topp…"\n', po)
        self.assertIn('#, fuzzy\n#| msgid "[[[bV {0}]]] {1w2}"\nmsgctxt "About"', po)
        self.assertIn('#~ msgctxt "State[0]"\n#~ msgid "on"\n#~ msgstr "ein"\n', po)
        self.assertEqual(sorted(self.check().stdout.splitlines())[0], f"{self.po}: 'About': fuzzy, still to be looked at")
        (pack,) = self.packs(self.po).values()
        self.assertNotIn("topp", self.dump(pack))
        self.assertIn("&Starten", self.dump(pack))

        self.run_lpack("update", "--template", self.template(changed), self.po)
        self.assertEqual(self.po.read_text(encoding="utf-8"), po, "a second update changes nothing")

    def test_merges_corrections(self):
        self.translate()
        self.run_lpack("update", "--template", self.template(SOURCE.replace('"S&top…"', '"H&alt…"')), self.po)
        xml = self.folder / "common.xml"
        xml.write_bytes(
            b'<?xml version="1.0" encoding="utf-8"?>\r\n<Corrections>\r\n  <Module name="common">\r\n'
            b'    <String id="Stop" value="&amp;A \\n <b> &amp;quot;\xc3\xa9&amp;quot;\xe2\x80\xa6"/>\r\n'
            b'    <String id="Nothing" value="x"/>\r\n  </Module>\r\n</Corrections>\r\n'
        )
        self.assertIn("has no 'Nothing'", self.run_lpack("merge-corrections", "--po", self.po, xml).stderr)
        (pack,) = self.packs(self.po).values()
        self.assertIn('"&A \\n <b> \\"é\\"…"', self.dump(pack))
        xml.write_text("<x/>")
        self.assertIn("not a file of corrections", self.run_lpack("merge-corrections", "--po", self.po, xml).stderr)


unittest.main()
