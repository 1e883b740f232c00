#!/usr/bin/python3
"""Makes the release: a ZIP file with the program, its languages, the guide and the licences of what is linked in.

    make_package.py --program EXE --languages FOLDER --commit-time SECONDS --out ZIP

Equal inputs give an equal file: entries are sorted, and all have the time of the commit.
"""

import argparse
import subprocess
import tempfile
import time
import zipfile
from pathlib import Path

import markdown

ROOT = Path(__file__).resolve().parents[2]

DOCUMENTS = {"administrators-guide.html": "administrators-guide.md", "registry-reference.html": "registry-reference.md"}

# Of the packages whose code is part of the executable.
LICENCES = {
    "licences/boost.txt": Path("/usr/share/doc/libboost1.81-dev/copyright"),
    "licences/gcc-runtime-libraries.txt": Path("/usr/share/doc/g++-mingw-w64-x86-64-posix/copyright"),
    "licences/mingw-w64.txt": Path("/usr/share/doc/mingw-w64-x86-64-dev/copyright"),
}

PAGE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>{title}</title>
<style>
body {{ font-family: "Segoe UI", sans-serif; max-width: 50em; margin: 2em auto; padding: 0 1em; line-height: 1.4; }}
table {{ border-collapse: collapse; }}
th, td {{ border: 1px solid #aaa; padding: 0.3em 0.6em; text-align: left; vertical-align: top; }}
img {{ max-width: 100%; }}
</style>
</head>
<body>
{body}
</body>
</html>
"""


def page(source: Path) -> bytes:
    text = source.read_text(encoding="utf-8")
    for target, name in DOCUMENTS.items():
        text = text.replace(f"`{name}`", f"[{target}]({target})")
    title = text.splitlines()[0].lstrip("# ")
    return PAGE.format(title=title, body=markdown.markdown(text, extensions=["tables"])).encode()


def stripped(program: Path) -> bytes:
    with tempfile.TemporaryDirectory() as folder:
        result = Path(folder, program.name)
        subprocess.run(["llvm-strip-19", "--strip-all", "-o", str(result), str(program)], check=True)
        return result.read_bytes()


def contents(program: Path, languages: Path) -> dict[str, bytes]:
    packs = sorted(languages.glob("*.lpack"))
    if not packs:
        raise SystemExit(f"no languages in {languages}")
    files = {program.name: stripped(program)}
    files |= {f"languages/{pack.name}": pack.read_bytes() for pack in packs}
    files |= {target: page(ROOT / "docs" / source) for target, source in DOCUMENTS.items()}
    files |= {f"pictures/{picture.name}": picture.read_bytes() for picture in (ROOT / "docs/pictures").glob("*.png")}
    files |= {name: source.read_bytes() for name, source in LICENCES.items()}
    return files


def write(files: dict[str, bytes], moment: time.struct_time, out: Path) -> None:
    with zipfile.ZipFile(out, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as package:
        for name, data in sorted(files.items()):
            entry = zipfile.ZipInfo(name, moment[:6])
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.create_system = 0
            package.writestr(entry, data)


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", type=Path, required=True)
    parser.add_argument("--languages", type=Path, required=True)
    parser.add_argument("--commit-time", type=int, required=True, help="seconds since 1970")
    parser.add_argument("--out", type=Path, required=True)
    options = parser.parse_args()
    write(contents(options.program, options.languages), time.gmtime(options.commit_time), options.out)


if __name__ == "__main__":
    main()
