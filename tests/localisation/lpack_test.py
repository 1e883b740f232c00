"""Runs the pack compiler on good and bad sources: lpack_test.py LPACK"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

LPACK = sys.argv.pop(1)
OUTPUTS = ("common.bin", "program.bin", "string_ids.h", "string_keys.inc")


def entry(**fields) -> str:
    fields = {"module": '"common"', "name": '"ok"', "key": '"OK"', "comment": '"Button."'} | fields
    if "items" not in fields:
        fields.setdefault("text", '"OK"')
    return "[[string]]\n" + "".join(f"{name} = {value}\n" for name, value in fields.items() if value)


class LpackTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def run_lpack(self, *arguments):
        return subprocess.run([sys.executable, LPACK, *map(str, arguments)], capture_output=True, text=True, encoding="utf-8")

    def compile(self, source, out="out"):
        path = self.folder / "english.toml"
        path.write_text(source, encoding="utf-8")
        return self.run_lpack("compile-builtin", path, "--out", self.folder / out)

    def dump(self, pack):
        result = self.run_lpack("dump", pack)
        return result.stdout if result.returncode == 0 else result.stderr

    def test_equal_sources_give_equal_bytes(self):
        source = entry() + entry(name='"no"', key='"No"', module='"program"')
        for out in ("first", "second"):
            self.assertEqual(self.compile(source, out).returncode, 0)
        for name in OUTPUTS:
            self.assertEqual((self.folder / "first" / name).read_bytes(), (self.folder / "second" / name).read_bytes())

    def test_leaves_equal_outputs_alone(self):
        self.compile(entry())
        before = [(self.folder / "out" / name).stat().st_mtime_ns for name in OUTPUTS]
        self.compile(entry())
        self.assertEqual([(self.folder / "out" / name).stat().st_mtime_ns for name in OUTPUTS], before)

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


unittest.main()
